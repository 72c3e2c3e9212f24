// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "eventlog.h"
#include "runtimeconfig.h"
#include "runtimeprocess.h"

#include <QHash>
#include <QObject>
#include <QStringList>

#include <functional>

/// The simulated Android as systemd sees it: starts the service manager and the system
/// server, keeps the log of both, and tells systemd when they are ready. Of these two the
/// system server may be made to crash.
class AlienRuntime : public QObject
{
    Q_OBJECT

public:
    using Respond = std::function<void(const QJsonObject &)>;

    explicit AlienRuntime(const RuntimeConfig &config);

    void start();
    /// Ends the event loop after the configured delay.
    void stop();

    EventLog *log() { return &m_log; }
    const RuntimeConfig &config() const { return m_config; }
    /// Names of the services registered with the service manager, sorted.
    QStringList services() const { return m_registered; }

    /// Has the system server handle a control request. All that it did before its answer is in
    /// the log when that comes. Without a system server the answer is a refusal.
    void ask(const QJsonObject &request, const Respond &respond);
    /// Kills the system server. @return false when it is dead already.
    bool crashServices();
    /// Starts a new one. @return false while the services of the old one are not gone.
    bool recoverServices();
    /// Whether all services of the system server are registered.
    bool servicesAreThere() const;
    /// Whether the system server is dead and the service manager has heard so of each service.
    bool servicesAreGone() const;

Q_SIGNALS:
    /// A service came or went, or the system server is dead.
    void servicesChanged();

private:
    void onServiceManagerEvent(const QJsonObject &event);
    void onSystemServerLine(const QJsonObject &line);
    void onSystemServerStopped(const QString &reason);
    void startSystemServer();
    /// Tells the system server what became of "alien.launcher".
    void passOn(bool launcherRegistered);
    void changeServices();
    void becomeReady();
    void fail(const QString &reason);

    const RuntimeConfig m_config;
    EventLog m_log;
    // destroyed in the order from the last to the first: the service manager outlives those
    // who speak to it
    RuntimeProcess m_serviceManager;
    RuntimeProcess m_systemServer;
    QHash<int, Respond> m_asked; ///< by the number of the request
    int m_lastNumber = 0;
    QStringList m_registered;
    QStringList m_own; ///< services of the system server
    bool m_becomingReady = false;
    bool m_crashing = false;
};
