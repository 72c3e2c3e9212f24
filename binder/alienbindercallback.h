// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/gbinderhandles.h"

#include <QObject>

class AlienBinderParcel;

/// What the runtime's calls on an AlienBinderCallback end up in.
class AlienBinderRequestHandler
{
public:
    /// Reads the arguments from @p in and writes the results to @p out. False for a call that
    /// it does not know.
    virtual bool processRequest(quint32 code, AlienBinderParcel *in, AlienBinderParcel *out) = 0;

protected:
    ~AlienBinderRequestHandler() = default; // nobody owns one by this type
};

/// A local object that the daemon hands to the runtime in a call, so that the runtime can
/// call back. It answers as a service does, with a reply to each call that is not oneway. The
/// observers of AlienPackageManager are plain local objects instead: the runtime gets a status
/// alone from them, and new ones with each connect.
class AlienBinderCallback : public QObject
{
    Q_OBJECT

public:
    /// @p interface is a literal; @p handler is not owned and must outlive the object.
    AlienBinderCallback(GBinderServiceManager *manager, const char *interface,
        AlienBinderRequestHandler *handler, QObject *parent);

    /// To be written into the call; owned by this object. Null once the link has gone.
    GBinderLocalObject *localObject() const { return m_localObject.get(); }

public Q_SLOTS:
    /// Drops the local object when the link has gone: it cannot outlive the link.
    void onConnectionChanged(bool connected);

private:
    static GBinderLocalReply *transact(GBinderLocalObject *object, GBinderRemoteRequest *request,
        guint code, guint flags, int *status, void *callback);

    GBinder::LocalObject m_localObject;
    AlienBinderRequestHandler *m_handler;
};
