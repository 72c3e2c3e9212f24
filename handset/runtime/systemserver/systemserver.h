// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "appcatalogue.h"
#include "eventlog.h"
#include "gbinderhandles.h"
#include "launcherchannel.h"
#include "packageinstaller.h"
#include "runtimeconfig.h"
#include "services/alarmservice.h"
#include "windowlist.h"

#include <QObject>

#include <memory>
#include <vector>

/// The simulated Android's services, and its announcements to "alien.launcher".
class SystemServer : public QObject
{
    Q_OBJECT

public:
    explicit SystemServer(const RuntimeConfig &config);
    ~SystemServer() override;

    /// Registers the services. @return false when that failed; the log says why.
    bool start();
    /// "alien.launcher" came or went. When it comes, it is told of all apps.
    void setLauncherRegistered(bool registered);

    AppCatalogue *apps() { return &m_apps; }
    LauncherChannel *launcher() { return &m_launcher; }
    WindowList *windows() { return &m_windows; }
    PackageInstaller *installer() { return &m_installer; }
    /// Null until one was set.
    QString timeZone() const { return m_alarm->timeZone(); }
    /// Null for a name that none has.
    AndroidService *service(const QString &name) const;

private:
    void makeServices();
    void announceAll();
    bool fail(const QString &reason);

    const RuntimeConfig m_config;
    EventLog m_log;
    AppCatalogue m_apps;
    WindowList m_windows;
    ServiceManagerPointer m_serviceManager;
    LauncherChannel m_launcher;
    PackageInstaller m_installer;
    std::vector<std::unique_ptr<AndroidService>> m_services;
    AlarmService *m_alarm = nullptr; ///< one of m_services
};
