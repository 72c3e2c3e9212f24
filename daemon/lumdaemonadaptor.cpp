// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/lumdaemonadaptor.h"

LumDaemonAdaptor::LumDaemonAdaptor(QObject *parent) : QDBusAbstractAdaptor(parent)
{
    setAutoRelaySignals(true);
}

bool LumDaemonAdaptor::installFile(const QString &filename)
{
    bool success = false;
    QMetaObject::invokeMethod(
        parent(), "installFile", Q_RETURN_ARG(bool, success), Q_ARG(QString, filename));
    return success;
}

bool LumDaemonAdaptor::installPreloadFile(const QString &filename)
{
    bool success = false;
    QMetaObject::invokeMethod(
        parent(), "installPreloadFile", Q_RETURN_ARG(bool, success), Q_ARG(QString, filename));
    return success;
}

bool LumDaemonAdaptor::installPartnerSpaceFile(const QString &filename)
{
    bool success = false;
    QMetaObject::invokeMethod(
        parent(), "installPartnerSpaceFile", Q_RETURN_ARG(bool, success), Q_ARG(QString, filename));
    return success;
}

bool LumDaemonAdaptor::removeFile(const QString &filename)
{
    bool success = false;
    QMetaObject::invokeMethod(
        parent(), "removeFile", Q_RETURN_ARG(bool, success), Q_ARG(QString, filename));
    return success;
}

qulonglong LumDaemonAdaptor::getAndroidAppDataUsage()
{
    qulonglong bytes = 0;
    QMetaObject::invokeMethod(parent(), "getAndroidAppDataUsage", Q_RETURN_ARG(qulonglong, bytes));
    return bytes;
}

void LumDaemonAdaptor::controlService(bool start)
{
    QMetaObject::invokeMethod(parent(), "controlService", Q_ARG(bool, start));
}

void LumDaemonAdaptor::controlServiceAutostart(bool enable)
{
    QMetaObject::invokeMethod(parent(), "controlServiceAutostart", Q_ARG(bool, enable));
}

bool LumDaemonAdaptor::isRunning()
{
    return false;
}

void LumDaemonAdaptor::notifyRuntimeUpgrade(bool upgrading)
{
    QMetaObject::invokeMethod(parent(), "notifyRuntimeUpgrade", Q_ARG(bool, upgrading));
}

bool LumDaemonAdaptor::getAppStartOnBootup(const QString &packageName)
{
    bool autoStartAllowed = false;
    QMetaObject::invokeMethod(parent(), "getAppStartOnBootup", Q_RETURN_ARG(bool, autoStartAllowed),
        Q_ARG(QString, packageName));
    return autoStartAllowed;
}

void LumDaemonAdaptor::setAppStartOnBootup(const QString &packageName, bool autoStartAllowed)
{
    QMetaObject::invokeMethod(parent(), "setAppStartOnBootup", Q_ARG(QString, packageName),
        Q_ARG(bool, autoStartAllowed));
}

void LumDaemonAdaptor::deleteAppCacheFiles(const QString &packageName)
{
    QMetaObject::invokeMethod(parent(), "deleteAppCacheFiles", Q_ARG(QString, packageName));
}

void LumDaemonAdaptor::clearAppUserData(const QString &packageName)
{
    QMetaObject::invokeMethod(parent(), "clearAppUserData", Q_ARG(QString, packageName));
}

void LumDaemonAdaptor::forceStopApp(const QString &packageName)
{
    QMetaObject::invokeMethod(parent(), "forceStopApp", Q_ARG(QString, packageName));
}

AppSizeInfo LumDaemonAdaptor::getAppSize(const QString &packageName)
{
    AppSizeInfo stats{};
    QMetaObject::invokeMethod(
        parent(), "getAppSize", Q_RETURN_ARG(AppSizeInfo, stats), Q_ARG(QString, packageName));
    return stats;
}

void LumDaemonAdaptor::openAppSettings(const QString &packageName)
{
    QMetaObject::invokeMethod(parent(), "openAppSettings", Q_ARG(QString, packageName));
}

void LumDaemonAdaptor::viewLicenses()
{
    QMetaObject::invokeMethod(parent(), "viewLicenses");
}

void LumDaemonAdaptor::launchApp(const QString &packageName)
{
    QMetaObject::invokeMethod(parent(), "launchApp", Q_ARG(QString, packageName));
}

void LumDaemonAdaptor::launchIntent(const QString &action, const QString &data, const QString &type,
    const QString &packageName, const QString &className, const QString &category,
    const QVariantMap &extras)
{
    QMetaObject::invokeMethod(parent(), "launchIntent", Q_ARG(QString, action),
        Q_ARG(QString, data), Q_ARG(QString, type), Q_ARG(QString, packageName),
        Q_ARG(QString, className), Q_ARG(QString, category), Q_ARG(QVariantMap, extras));
}
