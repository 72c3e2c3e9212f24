// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/gbinderhandles.h"

#include <QObject>
#include <QTimer>

#include <vector>

class AlienBinderCallback;
class AlienBinderRequestHandler;
class AlienBinderTransaction;

/// The link to one named service of the Android runtime. It follows the runtime's state and
/// comes in two modes:
///  - persistent: connects as soon as the runtime is active and the service is registered,
///    and again when the service has died. While the runtime is active and there is no link it
///    tries once more after 1 s and then every 2 s;
///  - on demand: connects when a client is asked for, and drops the link 5000 ms after that
///    connect, used or not.
/// Lives on the main thread, like the gbinder callbacks that drive it.
class AlienBinderConnection : public QObject
{
    Q_OBJECT

public:
    /// @p serviceName and @p interface are literals and not copied. Connects at once when the
    /// runtime is active, so a slot connected later misses that signal.
    AlienBinderConnection(
        const char *serviceName, const char *interface, bool persistent, QObject *parent);
    ~AlienBinderConnection() override;

    /// The live client, owned by the connection, which may connect for it. Null when there is
    /// no link.
    GBinderClient *client();

    /// Whether there is a link, without connecting for the answer.
    bool isConnected() const { return m_client != nullptr; }

    /// The name under which the service is registered.
    const char *name() const { return m_serviceName; }

    /// A new transaction, child of this connection. Null when there is no link.
    AlienBinderTransaction *transaction(quint32 code, bool oneway);

    /// A new local object of @p interface, child of this connection, to be handed to the
    /// runtime in a call. @p handler is not owned. Null when there is no link.
    AlienBinderCallback *callback(const char *interface, AlienBinderRequestHandler *handler);

Q_SIGNALS:
    /// Emitted with false on every disconnect, also when nothing was connected.
    void connectionChanged(bool connected);

protected:
    /// The service manager of the link, owned by the connection; null while the runtime is
    /// not active.
    GBinderServiceManager *serviceManager() const { return m_serviceManager.get(); }

private Q_SLOTS:
    void onServiceStateChanged();
    void onTimeout();
    void onRetry();

private:
    struct WatchedRemote
    {
        GBinder::RemoteObject object;
        GBinder::DeathWatch death;

        void release();
    };

    enum class Manager { Keep, Release };

    static void onRegistration(GBinderServiceManager *manager, const char *name, void *connection);
    static void onDeath(GBinderRemoteObject *remote, void *connection);

    void start();
    void connectToService();
    void retryWhileMissing();
    void disconnectFromService(Manager manager);
    void releaseReplacedRemotes();
    void removeRegistrationHandler();

    WatchedRemote m_remote;
    gulong m_registrationHandlerId = 0;
    const char *const m_serviceName;
    const char *const m_interface;
    const bool m_persistent;
    QTimer m_timer;
    QTimer m_retryTimer;
    GBinder::ServiceManager m_serviceManager;
    GBinder::Client m_client;

    // A runtime that reports "active" while the link is up makes the connection connect once
    // more. What that replaces stays referenced, and its death is still heard, until the
    // service manager goes.
    std::vector<WatchedRemote> m_replacedRemotes;
    std::vector<GBinder::Client> m_replacedClients;
};
