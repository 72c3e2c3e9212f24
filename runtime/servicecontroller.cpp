// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/servicecontroller.h"

#include "runtime/logging.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusReply>

namespace {

constexpr char unitName[] = "aliendalvik.service";

// org.freedesktop.systemd1(5)
constexpr char systemdService[] = "org.freedesktop.systemd1";
constexpr char managerPath[] = "/org/freedesktop/systemd1";
constexpr char managerInterface[] = "org.freedesktop.systemd1.Manager";
constexpr char unitInterface[] = "org.freedesktop.systemd1.Unit";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";
constexpr char replaceMode[] = "replace";

constexpr char activeState[] = "ActiveState";
constexpr char subState[] = "SubState";
constexpr char unitFileState[] = "UnitFileState";

// By plain messages: a QDBusInterface would first ask the bus for the owner of systemd's name and
// then systemd for its long introspection text.
QDBusPendingCall callManager(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String(systemdService),
        QLatin1String(managerPath), QLatin1String(managerInterface), method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().asyncCall(message);
}

bool isEnabled(const QVariantMap &properties)
{
    return properties.value(QLatin1String(unitFileState)).toString() == QLatin1String("enabled");
}

void logState(const QVariantMap &properties)
{
    qCDebug(serviceLog) << "Alien Dalvik is"
                        << properties.value(QLatin1String(activeState)).toString() << "("
                        << properties.value(QLatin1String(subState)).toString() << ")";
}

QVariantMap unitProperties(const QString &unitPath)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String(systemdService), unitPath,
        QLatin1String(propertiesInterface), QStringLiteral("GetAll"));
    message << QString(QLatin1String(unitInterface));
    const QDBusReply<QVariantMap> reply = QDBusConnection::systemBus().call(message, QDBus::Block);
    return reply.value();
}

} // namespace

ServiceController *ServiceController::instance()
{
    static auto *const controller = new ServiceController;
    return controller;
}

ServiceController::ServiceController()
{
    // Without a subscriber systemd emits no signals about its units. It deals with this before it
    // answers the next question, so that nobody need wait here.
    callManager(QStringLiteral("Subscribe"), {});

    const QDBusReply<QDBusObjectPath> unit =
        callManager(QStringLiteral("LoadUnit"), {QString(QLatin1String(unitName))});
    if (!unit.isValid()) {
        qCCritical(serviceLog) << "Could not find Alien Dalvik service:" << unit.error().message();
        m_serviceState = QLatin1String(UnitState::invalid);
        return;
    }
    m_unitPath = unit.value().path();

    const QVariantMap properties = unitProperties(m_unitPath);
    QDBusConnection::systemBus().connect(QLatin1String(systemdService), m_unitPath,
        QLatin1String(propertiesInterface), QStringLiteral("PropertiesChanged"), this,
        SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));

    m_serviceState = properties.value(QLatin1String(activeState)).toString();
    logState(properties);
    m_serviceEnabled = isEnabled(properties);
    Q_EMIT serviceStateChanged(); // clazy:exclude=incorrect-emit
}

void ServiceController::controlService(bool start)
{
    const QLatin1String reached(start ? UnitState::active : UnitState::inactive);
    const QLatin1String underWay(start ? UnitState::activating : UnitState::deactivating);
    if (m_serviceState == reached || m_serviceState == underWay)
        return;
    callManager(start ? QStringLiteral("StartUnit") : QStringLiteral("StopUnit"),
        {QString(QLatin1String(unitName)), QString(QLatin1String(replaceMode))});
}

void ServiceController::controlAutostart(bool enable)
{
    const QStringList units{QLatin1String(unitName)};
    constexpr bool runtimeOnly = false;
    constexpr bool force = true;
    if (enable)
        callManager(QStringLiteral("EnableUnitFiles"), {units, runtimeOnly, force});
    else
        callManager(QStringLiteral("DisableUnitFiles"), {units, runtimeOnly});
}

void ServiceController::onPropertiesChanged(
    const QString &interface, const QVariantMap &changed, const QStringList &invalidated)
{
    Q_UNUSED(invalidated)
    if (interface != QLatin1String(unitInterface))
        return;

    if (changed.contains(QLatin1String(unitFileState))) {
        const bool enabled = isEnabled(changed);
        if (enabled != m_serviceEnabled) {
            m_serviceEnabled = enabled;
            Q_EMIT serviceEnabledChanged();
        }
    }

    if (!changed.contains(QLatin1String(activeState)))
        return;
    logState(changed);
    const QString state = changed.value(QLatin1String(activeState)).toString();
    if (state != m_serviceState) {
        m_serviceState = state;
        Q_EMIT serviceStateChanged();
    }
}
