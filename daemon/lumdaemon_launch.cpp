// SPDX-License-Identifier: BSD-3-Clause
// Starting apps and Android intents, now or when the runtime is up.
#include "daemon/lumdaemon.h"

#include "clients/alienservicemonitor.h"
#include "config/apkconfig.h"
#include "daemon/intentextras.h"
#include "daemon/logging.h"

#include <QScopeGuard>

namespace {

constexpr char mainAction[] = "android.intent.action.MAIN";
constexpr char settingsPackage[] = "com.android.settings";

// android.content.Intent
constexpr qint32 flagActivityNewTask = 0x10000000;
constexpr qint32 flagActivityClearTask = 0x00008000;
constexpr qint32 flagActivityTaskOnHome = 0x00004000;

AlienIntent settingsIntent(const QString &action)
{
    AlienIntent intent(action);
    intent.package = QLatin1String(settingsPackage);
    intent.flags = flagActivityNewTask | flagActivityClearTask;
    return intent;
}

} // namespace

void LumDaemon::launchApp(const QString &packageName)
{
    startServiceIfNeeded();
    AlienServiceMonitor *const monitor = AlienServiceMonitor::instance();
    if (monitor->client()) {
        qCDebug(daemonLog) << "Launching" << packageName;
        monitor->launchPackage(packageName);
        return;
    }
    qCDebug(daemonLog) << "Starting Alien to launch" << packageName;
    notifyLaunchPending(packageName);
    m_deferredLaunches.append(packageName);
    tellQueued("launch", packageName);
}

void LumDaemon::drainDeferredLaunches()
{
    while (!m_deferredLaunches.isEmpty()) {
        const QString package = m_deferredLaunches.takeFirst();
        qCDebug(daemonLog) << "Launching " << package << " (" << m_deferredLaunches.size()
                           << " more in queue)";
        AlienServiceMonitor::instance()->launchPackage(package);
    }
    updateMonitor();
}

void LumDaemon::launchIntent(const QString &action, const QString &data, const QString &type,
    const QString &packageName, const QString &className, const QString &category,
    const QVariantMap &extras)
{
    startServiceIfNeeded();
    qCDebug(daemonLog) << "Launching intent" << action << data << type << packageName << className
                       << extras;

    AlienIntent intent(action);
    if (action == QLatin1String(mainAction))
        intent.flags = flagActivityNewTask | flagActivityTaskOnHome;
    if (!data.isEmpty())
        intent.data = ApkConfig::runtimeUrl(data);
    if (!type.isEmpty())
        intent.type = type;
    if (!packageName.isEmpty()) {
        intent.package = packageName;
        if (!className.isEmpty()) {
            intent.componentPackage = packageName;
            intent.componentClass = className;
        }
    }
    if (!category.isEmpty())
        intent.categories.append(category);
    intent.extras = withoutDescriptors(extras);
    queueIntent(intent, data.isEmpty() ? action : data);
}

void LumDaemon::openAppSettings(const QString &packageName)
{
    startServiceIfNeeded();
    qCDebug(daemonLog) << "Opening app settings for" << packageName;
    AlienIntent intent =
        settingsIntent(QStringLiteral("android.settings.APPLICATION_DETAILS_SETTINGS"));
    intent.data.setScheme(QStringLiteral("package"));
    intent.data.setPath(packageName, QUrl::DecodedMode);
    queueIntent(intent, intent.data.toString());
}

void LumDaemon::viewLicenses()
{
    startServiceIfNeeded();
    qCDebug(daemonLog) << "Opening legal information settings page";
    const AlienIntent intent = settingsIntent(QStringLiteral("android.settings.LEGAL_INFO"));
    queueIntent(intent, intent.action);
}

void LumDaemon::queueIntent(const AlienIntent &intent, const QString &what)
{
    m_intentQueue.append(intent);
    if (!m_activityManager.client()) {
        notifyLaunchPending(intent.package);
        tellQueued("intent", what);
    } else if (!m_intentQueueBusy) {
        launchQueuedIntents();
    } else {
        updateMonitor();
    }
}

void LumDaemon::launchQueuedIntents()
{
    m_intentQueueBusy = true;
    const auto toldAtTheEnd = qScopeGuard([this] { updateMonitor(); });
    // What is still queued when the service has gone waits for its return.
    while (!m_intentQueue.isEmpty() && m_activityManager.client()) {
        const AlienIntent intent = m_intentQueue.takeFirst();
        qCDebug(daemonLog) << "Launching " << intent.action << intent.package;
        m_activityManager.startActivity(intent);
        if (!intent.package.isEmpty()) {
            m_windowWait.start(intent.package);
            return; // until the wait has finished
        }
    }
    m_intentQueueBusy = false;
}

void LumDaemon::onActivityManagerAvailable(bool connected)
{
    if (connected && !m_intentQueue.isEmpty() && !m_intentQueueBusy)
        launchQueuedIntents();
}

bool LumDaemon::hasUnansweredCall() const
{
    return m_windowWait.hasUnansweredCall();
}
