// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/gbinderhandles.h"

#include <QObject>

class AlienBinderParcel;

/// A service that the daemon offers to the Android runtime under a name. It is published
/// while the runtime is "activating", so that it stands ready before Android looks for it,
/// and withdrawn when the runtime is "deactivating". Lives on the main thread; calls of the
/// runtime arrive there.
class AlienBinderService : public QObject
{
    Q_OBJECT

public:
    /// The strings are literals and not copied. Publishes at once when the runtime is on its
    /// way up or active.
    AlienBinderService(
        const char *name, const char *interface, const char *device, QObject *parent);
    ~AlienBinderService() override;

    /// Withdraws the service. Does nothing when it is not published.
    virtual void stop();

protected:
    /// Handles one call of the runtime. @p flags holds GBINDER_TX_FLAG_ONEWAY for a call
    /// without reply. @p status receives 0 when the call was handled and 1 when it was not.
    /// The reply belongs to the caller; null for none.
    virtual GBinderLocalReply *onTransact(
        GBinderRemoteRequest *request, quint32 code, quint32 flags, int *status);

    /// Handles one call for a class that keeps onTransact() as it is: reads its arguments from
    /// @p in, writes its results to @p out. False for a call that it does not know.
    virtual bool processRequest(quint32 code, AlienBinderParcel *in, AlienBinderParcel *out);

protected Q_SLOTS:
    /// Follows the runtime's state. @p forceStartAttempt publishes whatever the state is.
    void onServiceStateChanged(bool forceStartAttempt = false);

private:
    static GBinderLocalReply *transact(GBinderLocalObject *object, GBinderRemoteRequest *request,
        guint code, guint flags, int *status, void *service);

    void publish();

    GBinder::ServiceManager m_serviceManager;
    GBinder::ServiceName m_serviceNameHandle;
    GBinder::LocalObject m_localObject;
    const char *const m_device;
    const char *const m_interface;
    const char *const m_name;
};
