// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// What changes is told by org.freedesktop.DBus.Properties: no signal of the adaptor's
// own. A method that answers is const and a slot.
// clazy:excludeall=qproperty-without-notify,const-signal-or-slot

#include "daemon/monitor.h"

#include <QDBusAbstractAdaptor>

/// The monitor's face on the bus: its properties and its method, read from the parent. The
/// signals are the parent's own.
class MonitorAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tovra.lumd.Monitor1")
    Q_CLASSINFO("D-Bus Introspection",
        "  <interface name=\"com.tovra.lumd.Monitor1\">\n"
        "    <property name=\"RuntimeState\" type=\"s\" access=\"read\"/>\n"
        "    <property name=\"Ready\" type=\"b\" access=\"read\"/>\n"
        "    <property name=\"PendingChanges\" type=\"u\" access=\"read\"/>\n"
        "    <property name=\"PendingLaunches\" type=\"u\" access=\"read\"/>\n"
        "    <property name=\"SdkLevel\" type=\"i\" access=\"read\"/>\n"
        "    <property name=\"Version\" type=\"s\" access=\"read\">\n"
        "      <annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" "
        "value=\"const\"/>\n"
        "    </property>\n"
        "    <method name=\"ListApps\">\n"
        "      <arg name=\"apps\" type=\"a{sa(ssssb)}\" direction=\"out\"/>\n"
        "      <annotation name=\"org.qtproject.QtDBus.QtTypeName.Out0\" value=\"ListedApps\"/>\n"
        "    </method>\n"
        "    <signal name=\"InstallFinished\">\n"
        "      <arg name=\"package\" type=\"s\"/>\n"
        "      <arg name=\"success\" type=\"b\"/>\n"
        "      <arg name=\"message\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"RemoveFinished\">\n"
        "      <arg name=\"package\" type=\"s\"/>\n"
        "      <arg name=\"success\" type=\"b\"/>\n"
        "    </signal>\n"
        "    <signal name=\"RequestQueued\">\n"
        "      <arg name=\"kind\" type=\"s\"/>\n"
        "      <arg name=\"what\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"LauncherChanged\">\n"
        "      <arg name=\"desktopFile\" type=\"s\"/>\n"
        "      <arg name=\"package\" type=\"s\"/>\n"
        "      <arg name=\"name\" type=\"s\"/>\n"
        "      <arg name=\"icon\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"LauncherGone\">\n"
        "      <arg name=\"desktopFile\" type=\"s\"/>\n"
        "      <arg name=\"package\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"PackageRemoved\">\n"
        "      <arg name=\"package\" type=\"s\"/>\n"
        "    </signal>\n"
        "    <signal name=\"ListComplete\"/>\n"
        "  </interface>\n")
    // The names and types are those of the bus.
    Q_PROPERTY(QString RuntimeState READ runtimeState)
    Q_PROPERTY(bool Ready READ isReady)
    Q_PROPERTY(uint PendingChanges READ pendingChanges)
    Q_PROPERTY(uint PendingLaunches READ pendingLaunches)
    Q_PROPERTY(int SdkLevel READ sdkLevel)
    Q_PROPERTY(QString Version READ version)

public:
    explicit MonitorAdaptor(Monitor *monitor)
        : QDBusAbstractAdaptor(monitor), m_monitor(monitor) { }

    QString runtimeState() const { return m_monitor->state().runtimeState; }
    bool isReady() const { return m_monitor->state().isReady; }
    uint pendingChanges() const { return m_monitor->state().pendingChanges; }
    uint pendingLaunches() const { return m_monitor->state().pendingLaunches; }
    int sdkLevel() const { return m_monitor->state().sdkLevel; }
    QString version() const { return Monitor::version(); }

public Q_SLOTS:
    ListedApps ListApps() const { return m_monitor->listApps(); }

private:
    const Monitor *m_monitor; // the parent
};
