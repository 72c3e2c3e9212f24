// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "clients/appsizeinfo.h"

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

/// The daemon's face on the system bus. Each slot calls the slot of the same name of its
/// parent and hands back the result. The parent has no isRunning(): its reply is always false
/// and means nothing. The parent's signals are relayed.
class LumDaemonAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tovra.lumd")
    // Clients generate code from this text: its odd spots, such as the type of "extras", stay.
    Q_CLASSINFO("D-Bus Introspection",
        "  <interface name=\"com.tovra.lumd\">\n"
        "    <method name=\"installFile\">\n"
        "      <arg name=\"filename\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"success\" type=\"b\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"installPreloadFile\">\n"
        "      <arg name=\"filename\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"success\" type=\"b\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"installPartnerSpaceFile\">\n"
        "      <arg name=\"filename\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"success\" type=\"b\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"removeFile\">\n"
        "      <arg name=\"filename\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"success\" type=\"b\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"getAndroidAppDataUsage\">\n"
        "      <arg name=\"bytes\" type=\"t\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"controlService\">\n"
        "      <arg name=\"start\" type=\"b\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"controlServiceAutostart\">\n"
        "      <arg name=\"enable\" type=\"b\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"isRunning\">\n"
        "      <arg name=\"running\" type=\"b\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"notifyRuntimeUpgrade\">\n"
        "      <arg name=\"upgrading\" type=\"b\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"getAppStartOnBootup\">\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"autoStartAllowed\" type=\"b\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"setAppStartOnBootup\">\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"autoStartAllowed\" type=\"b\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"deleteAppCacheFiles\">\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"clearAppUserData\">\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"forceStopApp\">\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"getAppSize\">\n"
        "      <annotation name=\"org.qtproject.QtDBus.QtTypeName.Out0\" value=\"AppSizeInfo\"/>\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"stats\" type=\"(xxx)\" direction=\"out\"/>\n"
        "    </method>\n"
        "    <method name=\"openAppSettings\">\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"viewLicenses\"/>\n"
        "    <method name=\"launchApp\">\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <method name=\"launchIntent\">\n"
        "      <annotation name=\"org.qtproject.QtDBus.QtTypeName.In6\" value=\"QVariantMap\"/>\n"
        "      <arg name=\"action\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"data\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"type\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"packageName\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"className\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"category\" type=\"s\" direction=\"in\"/>\n"
        "      <arg name=\"extras\" type=\"{sv}\" direction=\"in\"/>\n"
        "    </method>\n"
        "    <signal name=\"installPackage\">\n"
        "      <arg name=\"filename\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"uninstallPackage\">\n"
        "      <arg name=\"filename\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"installPackageFromRPM\">\n"
        "      <arg name=\"filename\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"uninstallPackageFromRPM\">\n"
        "      <arg name=\"filename\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"appStartOnBootupChanged\">\n"
        "      <arg name=\"packageName\" type=\"s\"/>\n"
        "      <arg name=\"autoStartAllowed\" type=\"b\"/>\n"
        "    </signal>\n"
        "  </interface>\n")

public:
    explicit LumDaemonAdaptor(QObject *parent);

public Q_SLOTS:
    bool installFile(const QString &filename);
    bool installPreloadFile(const QString &filename);
    bool installPartnerSpaceFile(const QString &filename);
    bool removeFile(const QString &filename);
    qulonglong getAndroidAppDataUsage();
    void controlService(bool start);
    void controlServiceAutostart(bool enable);
    bool isRunning();
    void notifyRuntimeUpgrade(bool upgrading);
    bool getAppStartOnBootup(const QString &packageName);
    void setAppStartOnBootup(const QString &packageName, bool autoStartAllowed);
    void deleteAppCacheFiles(const QString &packageName);
    void clearAppUserData(const QString &packageName);
    void forceStopApp(const QString &packageName);
    AppSizeInfo getAppSize(const QString &packageName);
    void openAppSettings(const QString &packageName);
    void viewLicenses();
    void launchApp(const QString &packageName);
    void launchIntent(const QString &action, const QString &data, const QString &type,
        const QString &packageName, const QString &className, const QString &category,
        const QVariantMap &extras);

Q_SIGNALS:
    void installPackage(const QString &filename);
    void uninstallPackage(const QString &filename);
    void installPackageFromRPM(const QString &filename);
    void uninstallPackageFromRPM(const QString &filename);
    void appStartOnBootupChanged(const QString &packageName, bool autoStartAllowed);
};
