// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/gbinderhandles.h"

#include <QObject>

class AlienBinderCallbackClient;
class AlienBinderTransaction;

/// Hears of the death of the object behind an AlienBinderCallbackClient.
class AlienBinderDeathListener
{
public:
    /// @p client ends its own life after this call; no pointer to it may be kept.
    virtual void died(AlienBinderCallbackClient *client) = 0;

protected:
    ~AlienBinderDeathListener() = default; // nobody owns one by this type
};

/// A remote object that the runtime handed to the daemon in a call, for transactions on it.
/// It deletes itself when the remote object dies, so it lives on the heap alone.
class AlienBinderCallbackClient : public QObject
{
    Q_OBJECT

public:
    /// Takes over the caller's reference to @p remote. @p listener is not owned. Null when
    /// @p remote is null.
    static AlienBinderCallbackClient *create(
        AlienBinderDeathListener *listener, GBinderRemoteObject *remote, const char *interface);
    ~AlienBinderCallbackClient() override;

    /// Owned by this object; null when it could not be made.
    GBinderClient *client() const { return m_client.get(); }

    /// A new transaction, child of this object. Null when there is no client.
    AlienBinderTransaction *transaction(quint32 code, bool oneway);

Q_SIGNALS:
    void onConnectionChanged(bool connected);

private:
    AlienBinderCallbackClient(
        AlienBinderDeathListener *listener, GBinderRemoteObject *remote, const char *interface);

    static void onDeath(GBinderRemoteObject *remote, void *client);

    AlienBinderDeathListener *m_listener;
    GBinder::RemoteObject m_remote;
    GBinder::Client m_client;
    GBinder::DeathWatch m_death;
};
