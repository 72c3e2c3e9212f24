// SPDX-License-Identifier: BSD-3-Clause
// Managing installed apps: sizes, data, start on boot, the upgrade of the runtime.
#include "daemon/lumdaemon.h"

#include "clients/androiduser.h"
#include "config/apkconfig.h"
#include "daemon/logging.h"

#include <QDBusConnection>
#include <QDBusMessage>

AppSizeInfo LumDaemon::getAppSize(const QString &packageName)
{
    const QString internalVolume;
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
    const Reply reply = replyLater();
    m_dataUsage.ask(m_config->path(AppDataDir),
        [reply](quint64 bytes) { reply({QVariant::fromValue(bytes)}); });
    return 0;
}

void LumDaemon::notifyRuntimeUpgrade(bool upgrading)
{
    const Reply reply = replyLater();
    m_upgradeNotices.notify(upgrading, [reply] { reply({}); });
}

LumDaemon::Reply LumDaemon::replyLater() const
{
    if (!calledFromDBus())
        return [](const QVariantList &) { };
    setDelayedReply(true);
    return [bus = connection(), call = message()](const QVariantList &results) {
        if (call.isReplyRequired())
            bus.send(call.createReply(results));
    };
}
