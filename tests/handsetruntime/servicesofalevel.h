// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "appcatalogue.h"
#include "eventlog.h"
#include "packageinstaller.h"
#include "services/activityservice.h"
#include "services/alarmservice.h"
#include "services/alienservice.h"
#include "services/deviceidleservice.h"
#include "services/packageservice.h"
#include "services/storagestatsservice.h"
#include "services/surfaceflingerservice.h"
#include "windowlist.h"

#include <QTemporaryDir>

#include <memory>
#include <vector>

/// All services of one level, without a binder device.
class Services
{
public:
    explicit Services(int sdk)
        : m_apps(m_folder.path()),
          m_windows(0),
          m_launcher(&m_log, sdk),
          m_installer({sdk, m_folder.path(), &m_apps, &m_windows, &m_launcher, &m_log}, {})
    {
        m_services.push_back(std::make_unique<ActivityService>(sdk, &m_log, &m_apps, &m_windows));
        auto alarm = std::make_unique<AlarmService>(sdk, &m_log);
        m_alarm = alarm.get();
        m_services.push_back(std::move(alarm));
        m_services.push_back(
            std::make_unique<AlienService>(sdk, &m_log, &m_installer, &m_windows, 1));
        m_services.push_back(std::make_unique<DeviceIdleService>(sdk, &m_log, &m_apps));
        m_services.push_back(std::make_unique<PackageService>(sdk, &m_log, &m_apps, &m_installer));
        m_services.push_back(std::make_unique<StorageStatsService>(sdk, &m_log, &m_apps));
        m_services.push_back(std::make_unique<SurfaceFlingerService>(sdk, &m_log, &m_windows));
    }

    AndroidService &service(const QString &name) const
    {
        for (const auto &service : m_services) {
            if (service->name() == name)
                return *service;
        }
        qFatal("no service %s", qPrintable(name));
    }

    AppCatalogue &apps() { return m_apps; }
    const WindowList &windows() const { return m_windows; }
    /// Null until one was set.
    QString timeZone() const { return m_alarm->timeZone(); }

private:
    const QTemporaryDir m_folder;
    EventLog m_log;
    AppCatalogue m_apps;
    WindowList m_windows;
    LauncherChannel m_launcher;
    PackageInstaller m_installer;
    AlarmService *m_alarm = nullptr; ///< one of m_services
    std::vector<std::unique_ptr<AndroidService>> m_services;
};
