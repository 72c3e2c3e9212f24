// SPDX-License-Identifier: BSD-3-Clause
#include "systemserver/systemserver.h"

#include "launchercalls.h"
#include "services/activityservice.h"
#include "services/alienservice.h"
#include "services/deviceidleservice.h"
#include "services/packageservice.h"
#include "services/storagestatsservice.h"
#include "services/surfaceflingerservice.h"

#include <QTimer>

#include <algorithm>

namespace {

// libgbinder's names of the request layouts: "aidl2" carries a work source in the header,
// or the priority for dumpsys in what the service manager is asked
const char *requestProtocol(int sdk)
{
    return sdk >= 29 ? "aidl2" : "aidl";
}

const char *serviceManagerProtocol(int sdk)
{
    return sdk >= 28 ? "aidl2" : "aidl";
}

} // namespace

SystemServer::SystemServer(const RuntimeConfig &config)
    : m_config(config),
      m_apps(QStringLiteral("/var/lib/alien-runtime/apps")),
      m_windows(config.windowPolls),
      m_launcher(&m_log, config.sdk),
      m_installer(
          {config.sdk, QStringLiteral("/home/.android"), &m_apps, &m_windows, &m_launcher, &m_log},
          {config.installDelay, config.clearDelay})
{
    makeServices();
}

SystemServer::~SystemServer() = default;

void SystemServer::makeServices()
{
    const int sdk = m_config.sdk;
    // in the order in which they come up while Android boots
    m_services.push_back(std::make_unique<SurfaceFlingerService>(sdk, &m_log, &m_windows));
    m_services.push_back(std::make_unique<PackageService>(sdk, &m_log, &m_apps, &m_installer));
    m_services.push_back(std::make_unique<ActivityService>(sdk, &m_log, &m_apps, &m_windows));
    auto alarm = std::make_unique<AlarmService>(sdk, &m_log);
    m_alarm = alarm.get();
    m_services.push_back(std::move(alarm));
    m_services.push_back(std::make_unique<StorageStatsService>(sdk, &m_log, &m_apps));
    m_services.push_back(std::make_unique<DeviceIdleService>(sdk, &m_log, &m_apps));
    m_services.push_back(std::make_unique<AlienService>(
        sdk, &m_log, &m_installer, &m_windows, m_config.installAnswer));
}

bool SystemServer::start()
{
    const QStringList problems = m_apps.load();
    for (const QString &problem : problems)
        m_log.record({{QStringLiteral("event"), QStringLiteral("apps")},
            {QStringLiteral("error"), problem}});
    m_serviceManager.reset(gbinder_servicemanager_new2(
        "/dev/puddlejumper", serviceManagerProtocol(m_config.sdk), requestProtocol(m_config.sdk)));
    if (!m_serviceManager)
        return fail(QStringLiteral("the service manager does not answer"));
    QStringList names;
    for (const auto &service : m_services) {
        if (!service->publish(m_serviceManager.get()))
            return fail(QStringLiteral("could not register \"%1\"").arg(service->name()));
        names.append(service->name());
    }
    m_log.record({{QStringLiteral("event"), QStringLiteral("published")},
        {QStringLiteral("services"), QJsonArray::fromStringList(names)}});
    return true;
}

void SystemServer::setLauncherRegistered(bool registered)
{
    if (!registered)
        m_launcher.close();
    else if (m_launcher.open(m_serviceManager.get()))
        QTimer::singleShot(m_config.announceDelay, this, &SystemServer::announceAll);
}

AndroidService *SystemServer::service(const QString &name) const
{
    const auto found = std::find_if(m_services.cbegin(), m_services.cend(),
        [&name](const auto &service) { return service->name() == name; });
    return found == m_services.cend() ? nullptr : found->get();
}

void SystemServer::announceAll()
{
    QList<AndroidApp> apps = m_apps.apps();
    if (m_config.announceBackwards)
        std::reverse(apps.begin(), apps.end());
    for (const AndroidApp &app : qAsConst(apps)) {
        for (const AndroidApp::Launcher &launcher : app.launchers)
            m_launcher.send(LauncherCalls::added(app, launcher, m_config.announceOneway));
    }
    m_launcher.send(LauncherCalls::complete(m_config.announceOneway));
}

bool SystemServer::fail(const QString &reason)
{
    m_log.record(
        {{QStringLiteral("event"), QStringLiteral("failed")}, {QStringLiteral("error"), reason}});
    return false;
}
