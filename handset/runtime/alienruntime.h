// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "appcatalogue.h"
#include "eventlog.h"
#include "gbinderhandles.h"
#include "launcherchannel.h"
#include "packageinstaller.h"
#include "runtimeconfig.h"
#include "servicemanagerprocess.h"
#include "services/alarmservice.h"
#include "windowlist.h"

#include <QObject>

#include <memory>
#include <vector>

/// The simulated Android: brings up the service manager and the services, tells systemd
/// when it is ready, and announces its apps whenever "alien.launcher" registers.
class AlienRuntime : public QObject
{
    Q_OBJECT

public:
    explicit AlienRuntime(const RuntimeConfig &config);
    ~AlienRuntime() override;

    void start();
    /// Ends the event loop after the configured delay.
    void stop();

    EventLog *log() { return &m_log; }
    AppCatalogue *apps() { return &m_apps; }
    LauncherChannel *launcher() { return &m_launcher; }
    WindowList *windows() { return &m_windows; }
    /// Null until one was set.
    QString timeZone() const { return m_alarm ? m_alarm->timeZone() : QString(); }
    /// One of the services of Android's own; null for a name that it has not.
    AndroidService *service(const QString &name) const;
    const RuntimeConfig &config() const { return m_config; }
    /// Names of the services registered with the service manager, sorted.
    QStringList services() const { return m_registered; }

private:
    void onServiceManagerEvent(const QJsonObject &event);
    void onRegistered(const QString &service);
    void makeServices();
    void publishServices();
    void becomeReady();
    void announceAll();
    void fail(const QString &reason);

    const RuntimeConfig m_config;
    EventLog m_log;
    AppCatalogue m_apps;
    WindowList m_windows;
    // destroyed in the order from the last to the first: the service manager outlives those
    // who speak to it
    ServiceManagerProcess m_serviceManagerProcess;
    ServiceManagerPointer m_serviceManager;
    LauncherChannel m_launcher;
    PackageInstaller m_installer;
    std::vector<std::unique_ptr<AndroidService>> m_services;
    AlarmService *m_alarm = nullptr; ///< one of m_services
    QStringList m_registered;
    bool m_becomingReady = false;
};
