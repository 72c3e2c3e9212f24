// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/lumdaemon.h"

#include "clients/alienservicemonitor.h"
#include "config/apkconfig.h"
#include "config/launchernames.h"
#include "daemon/introspection.h"
#include "daemon/logging.h"
#include "daemon/lumdaemonadaptor.h"
#include "runtime/servicecontroller.h"

#include <QDBusConnection>
#include <QDir>
#include <QFile>

#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char objectPath[] = "/com/tovra/lumd";
constexpr char busName[] = "com.tovra.lumd";

void registerObject(QDBusConnection &bus, const char *path, QObject *object)
{
    if (!bus.registerObject(QLatin1String(path), object, QDBusConnection::ExportAdaptors)) {
        qCCritical(daemonLog) << "Cannot register object at " << path;
        std::exit(EXIT_FAILURE);
    }
}

void removeStaleFiles(const QDir &dir)
{
    const QStringList names = dir.entryList(QDir::Files, QDir::NoSort);
    for (const QString &name : names) {
        const QString path = pathInFolder(dir, name);
        qCDebug(daemonLog) << "Removing old incoming file:" << path;
        if (!QFile::remove(path))
            qCDebug(daemonLog) << "Could not remove file::" << path;
    }
}

} // namespace

LumDaemon::LumDaemon(ApkConfig *config)
    : m_packageManager(nullptr),
      m_desktopManager(*config),
      m_serviceController(ServiceController::instance()),
      m_config(config)
{
    AppSizeInfo::registerMetaType();
    connectMembers();
    prepareFolders();
    claimBus();
    // Behind the name, which a second instance does not get: what it emits stays off the bus. Not
    // too late, since no call arrives before the event loop runs.
    new LumDaemonAdaptor(this);
    new Introspection(this);
    connectMonitor();
}

void LumDaemon::connectMembers()
{
    connect(&m_apkManager, &ApkManager::addLauncher, &m_desktopManager,
        &DesktopManager::onCreateLauncher);
    connect(&m_apkManager, &ApkManager::packageRemoved, &m_desktopManager,
        &DesktopManager::onRemovePackage);
    connect(&m_apkManager, &ApkManager::launchersComplete, &m_desktopManager,
        &DesktopManager::onLaunchersComplete);
    connect(AlienServiceMonitor::instance(), &AlienBinderConnection::connectionChanged, this,
        &LumDaemon::onAlienServiceAvailable);
    connect(&m_packageManager, &AlienBinderConnection::connectionChanged, this,
        &LumDaemon::onPackageManagerAvailable);
    connect(&m_activityManager, &AlienBinderConnection::connectionChanged, this,
        &LumDaemon::onActivityManagerAvailable);
    connect(&m_windowWait, &WindowWait::finished, this, &LumDaemon::launchQueuedIntents);
    connect(&m_packageManager, &AlienPackageManager::installationResultReceived, this,
        &LumDaemon::onNotifyInstallationResult);
    connect(&m_packageManager, &AlienPackageManager::uninstallationResultReceived, this,
        &LumDaemon::onNotifyUninstallationResult);
}

void LumDaemon::prepareFolders()
{
    QDir(m_config->path(PackagedDir)).mkpath(QStringLiteral("."));
    removeStaleFiles(incomingDir());
}

void LumDaemon::claimBus()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    registerObject(bus, objectPath, this);
    registerObject(bus, Monitor::objectPath, &m_monitor);
    if (!bus.registerService(QLatin1String(busName))) {
        qCCritical(daemonLog) << "Cannot register D-Bus service at" << busName;
        std::exit(EXIT_FAILURE);
    }
}

QDir LumDaemon::incomingDir() const
{
    const QDir dir(m_config->path(IncomingDir));
    if (!dir.exists() && !dir.mkpath(QStringLiteral(".")))
        qCWarning(daemonLog) << "Cannot create incoming apk directory:" << dir.path();

    const QByteArray path = dir.filePath(QStringLiteral(".")).toLocal8Bit();
    if (chown(path.constData(), 0, 0) != 0)
        qCWarning(daemonLog) << "Cannot set ownership of directory:" << dir.path();
    constexpr mode_t mode = S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH;
    if (chmod(path.constData(), mode) != 0)
        qCWarning(daemonLog) << "Cannot set permission of directory:" << dir.path();
    return dir;
}

void LumDaemon::startServiceIfNeeded()
{
    const QString state = m_serviceController->serviceState();
    if (state == QLatin1String(UnitState::inactive)
        || state == QLatin1String(UnitState::deactivating))
        controlService(true);
}

void LumDaemon::controlService(bool start)
{
    m_serviceController->controlService(start);
}

void LumDaemon::controlServiceAutostart(bool enable)
{
    m_serviceController->controlAutostart(enable);
}
