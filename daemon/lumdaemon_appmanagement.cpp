// SPDX-License-Identifier: BSD-3-Clause
// Managing installed apps: sizes, data, start on boot, the upgrade of the runtime.
#include "daemon/lumdaemon.h"

#include "config/apkconfig.h"
#include "daemon/logging.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QFileInfo>
#include <QProcess>

AppSizeInfo LumDaemon::getAppSize(const QString &packageName)
{
    const QString internalVolume;
    constexpr qint32 androidUser = 0;
    AppSizeInfo info =
        m_storageStatsManager.queryStatsForPackage(packageName, internalVolume, androidUser);
    // Unsigned, so that figures beyond all reason wrap around.
    info.dataBytes = static_cast<qint64>(
        static_cast<quint64>(info.dataBytes) - static_cast<quint64>(info.cacheBytes));
    qCDebug(daemonLog) << "App size query for" << packageName << ":" << info.codeBytes << ","
                       << info.dataBytes << "," << info.cacheBytes;
    return info;
}

void LumDaemon::deleteAppCacheFiles(const QString &packageName)
{
    m_packageManager.deleteApplicationCacheFiles(packageName);
}

void LumDaemon::clearAppUserData(const QString &packageName)
{
    m_packageManager.clearApplicationUserData(packageName);
}

void LumDaemon::forceStopApp(const QString &packageName)
{
    m_activityManager.forceStopPackage(packageName);
}

bool LumDaemon::getAppStartOnBootup(const QString &packageName)
{
    return m_deviceIdle.isWhitelisted(packageName);
}

void LumDaemon::setAppStartOnBootup(const QString &packageName, bool autoStartAllowed)
{
    const bool before = getAppStartOnBootup(packageName);
    m_deviceIdle.setWhitelisted(packageName, autoStartAllowed);
    const bool after = getAppStartOnBootup(packageName);
    if (after != before)
        Q_EMIT appStartOnBootupChanged(packageName, after);
}

quint64 LumDaemon::getAndroidAppDataUsage()
{
    constexpr int deadlineMilliseconds = 30000;
    QProcess du;
    du.start(QStringLiteral("/usr/bin/du"), {QStringLiteral("-sxb"), m_config->path(AppDataDir)},
        QIODevice::ReadOnly);
    du.waitForFinished(deadlineMilliseconds);
    if (du.exitStatus() == QProcess::NormalExit) {
        const QStringList parts =
            QString::fromUtf8(du.readAllStandardOutput()).split(QLatin1Char('\t'));
        if (parts.size() >= 2)
            return parts.first().toULongLong();
    }
    qCWarning(daemonLog) << "Could not determine android app data usage";
    return 0;
}

void LumDaemon::notifyRuntimeUpgrade(bool upgrading)
{
    QDBusInterface homeScreen(QStringLiteral("org.teskmobile.glossbar"),
        QStringLiteral("/LauncherModel"), QStringLiteral("org.teskmobile.glossbar.LauncherModel"),
        QDBusConnection::sessionBus());
    qCDebug(daemonLog) << "notifyRuntimeUpgrade:" << (upgrading ? "true" : "false");
    const QStringList desktopFiles = m_desktopManager.desktopFiles();
    for (const QString &path : desktopFiles) {
        const QString name = QFileInfo(path).baseName();
        if (upgrading)
            homeScreen.call(QStringLiteral("updatingStarted"), name, QString(), QString(), path);
        else
            homeScreen.call(QStringLiteral("updatingFinished"), name);
    }
}
