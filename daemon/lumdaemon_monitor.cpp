// SPDX-License-Identifier: BSD-3-Clause
// What is told to the programs that follow: from where it happens to the monitor.
#include "daemon/lumdaemon.h"

#include "clients/alienservicemonitor.h"
#include "config/apkconfig.h"
#include "runtime/servicecontroller.h"

// The monitor is the context of each connection, so that none outlives it. They are made behind
// those of connectMembers(): who hears of a thing may count on its having been done.
void LumDaemon::connectMonitor()
{
    connect(&m_packageManager, &AlienPackageManager::installationResultReceived, &m_monitor,
        [this](bool success, const QString &package, const QString &message) {
            m_monitor.tellInstallFinished(package, success, message);
        });
    connect(&m_packageManager, &AlienPackageManager::uninstallationResultReceived, &m_monitor,
        [this](bool success, const QString &package) {
            m_monitor.tellRemoveFinished(package, success);
        });
    connect(&m_desktopManager, &DesktopManager::launcherChanged, &m_monitor,
        &Monitor::tellLauncherChanged);
    connect(
        &m_desktopManager, &DesktopManager::launcherGone, &m_monitor, &Monitor::tellLauncherGone);
    connect(&m_apkManager, &ApkManager::packageRemoved, &m_monitor, &Monitor::tellPackageRemoved);
    connect(&m_apkManager, &ApkManager::launchersComplete, &m_monitor, &Monitor::tellListComplete);

    const auto update = [this] { updateMonitor(); };
    connect(&m_packageManager, &AlienBinderConnection::connectionChanged, &m_monitor,
        [this](bool connected) {
            if (!connected)
                m_monitor.forgetRemovals();
            updateMonitor();
        });
    connect(AlienServiceMonitor::instance(), &AlienBinderConnection::connectionChanged, &m_monitor,
        update);
    connect(m_serviceController, &ServiceController::serviceStateChanged, &m_monitor, update);
    updateMonitor();
}

void LumDaemon::tellQueued(const char *kind, const QString &what)
{
    updateMonitor();
    m_monitor.tellQueued(QLatin1String(kind), what);
}

void LumDaemon::updateMonitor()
{
    m_monitor.setState({m_serviceController->serviceState(),
        m_packageManager.isConnected() && AlienServiceMonitor::instance()->isConnected(),
        static_cast<uint>(m_deferredMods.size()),
        static_cast<uint>(m_deferredLaunches.size() + m_intentQueue.size()),
        ApkConfig::knownSdkVersion()});
}
