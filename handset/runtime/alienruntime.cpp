// SPDX-License-Identifier: BSD-3-Clause
#include "alienruntime.h"

#include "launchercalls.h"
#include "services/activityservice.h"
#include "services/alienservice.h"
#include "services/deviceidleservice.h"
#include "services/packageservice.h"
#include "services/storagestatsservice.h"
#include "services/surfaceflingerservice.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>

#include <systemd/sd-daemon.h>

namespace {

constexpr int FirstSdk = 27;
constexpr int LastSdk = 29;

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

AlienRuntime::AlienRuntime(const RuntimeConfig &config)
    : m_config(config),
      m_apps(QStringLiteral("/var/lib/alien-runtime/apps")),
      m_windows(config.windowPolls),
      m_launcher(&m_log),
      m_installer({&m_apps, &m_windows, &m_launcher, &m_log}, config.installDelay)
{
    connect(&m_serviceManagerProcess, &ServiceManagerProcess::eventReceived, this,
        &AlienRuntime::onServiceManagerEvent);
    connect(&m_serviceManagerProcess, &ServiceManagerProcess::stopped, this, &AlienRuntime::fail);
}

AlienRuntime::~AlienRuntime() = default;

void AlienRuntime::start()
{
    if (m_config.sdk < FirstSdk || m_config.sdk > LastSdk) {
        fail(QStringLiteral("/opt/alien/build.prop names no SDK level from 27 to 29"));
        return;
    }
    const QStringList problems = m_apps.load();
    for (const QString &problem : problems)
        m_log.record({{QStringLiteral("event"), QStringLiteral("apps")},
            {QStringLiteral("error"), problem}});
    m_serviceManagerProcess.start(m_config.sdk);
}

void AlienRuntime::stop()
{
    sd_notify(0, "STOPPING=1");
    m_log.record({{QStringLiteral("event"), QStringLiteral("stopping")}});
    QTimer::singleShot(m_config.stopDelay, this, [] { QCoreApplication::quit(); });
}

void AlienRuntime::onServiceManagerEvent(const QJsonObject &event)
{
    m_log.record(event);
    const QString kind = event.value(QLatin1String("event")).toString();
    const QString service = event.value(QLatin1String("service")).toString();
    if (kind == QLatin1String("contextmanager")) {
        publishServices();
    } else if (kind == QLatin1String("registered")) {
        onRegistered(service);
    } else if (kind == QLatin1String("died")) {
        m_registered.removeAll(service);
        if (service == QLatin1String("alien.launcher"))
            m_launcher.close();
    }
}

AndroidService *AlienRuntime::service(const QString &name) const
{
    const auto found = std::find_if(m_services.cbegin(), m_services.cend(),
        [&name](const auto &service) { return service->name() == name; });
    return found == m_services.cend() ? nullptr : found->get();
}

void AlienRuntime::makeServices()
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

void AlienRuntime::publishServices()
{
    m_serviceManager.reset(gbinder_servicemanager_new2(
        "/dev/puddlejumper", serviceManagerProtocol(m_config.sdk), requestProtocol(m_config.sdk)));
    if (!m_serviceManager) {
        fail(QStringLiteral("the service manager does not answer"));
        return;
    }
    makeServices();
    for (const auto &service : m_services) {
        if (!service->publish(m_serviceManager.get())) {
            fail(QStringLiteral("could not register \"%1\"").arg(service->name()));
            return;
        }
    }
}

void AlienRuntime::onRegistered(const QString &service)
{
    if (!m_registered.contains(service))
        m_registered.append(service);
    m_registered.sort();
    if (service == QLatin1String("alien.launcher")) {
        if (m_launcher.open(m_serviceManager.get()))
            QTimer::singleShot(m_config.announceDelay, this, &AlienRuntime::announceAll);
        return;
    }
    const bool allThere = std::all_of(m_services.cbegin(), m_services.cend(),
        [this](const auto &own) { return m_registered.contains(own->name()); });
    if (allThere && !m_becomingReady) {
        m_becomingReady = true;
        QTimer::singleShot(m_config.readyDelay, this, &AlienRuntime::becomeReady);
    }
}

void AlienRuntime::becomeReady()
{
    m_log.record({{QStringLiteral("event"), QStringLiteral("ready")},
        {QStringLiteral("sdk"), m_config.sdk}});
    sd_notify(0, "READY=1");
}

void AlienRuntime::announceAll()
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

void AlienRuntime::fail(const QString &reason)
{
    m_log.record(
        {{QStringLiteral("event"), QStringLiteral("failed")}, {QStringLiteral("error"), reason}});
    // the event loop may not run yet
    QTimer::singleShot(0, this, [] { QCoreApplication::exit(1); });
}
