// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/servicecontroller.h"

#include "runtime/logging.h"

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
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

// A QDBusInterface would fetch and parse the long introspection text of systemd's manager at each
// start, which nothing here needs.
class SystemdManager final : public QDBusAbstractInterface
{
public:
    explicit SystemdManager(QObject *parent)
        : QDBusAbstractInterface(QLatin1String(systemdService), QLatin1String(managerPath),
            managerInterface, QDBusConnection::systemBus(), parent)
    {
    }
};

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

ServiceController::ServiceController() : m_manager(new SystemdManager(this))
{
    // Without a subscriber systemd emits no signals about its units.
    m_manager->call(QStringLiteral("Subscribe"));

    const QDBusReply<QDBusObjectPath> unit =
        m_manager->call(QStringLiteral("LoadUnit"), QString(QLatin1String(unitName)));
    if (!unit.isValid()) {
        qCCritical(serviceLog) << "Could not find Alien Dalvik service:" << unit.error().message();
        m_serviceState = QStringLiteral("invalid");
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
    const QLatin1String reached(start ? "active" : "inactive");
    const QLatin1String underWay(start ? "activating" : "deactivating");
    if (m_serviceState == reached || m_serviceState == underWay)
        return;
    m_manager->asyncCall(start ? QStringLiteral("StartUnit") : QStringLiteral("StopUnit"),
        QLatin1String(unitName), QLatin1String(replaceMode));
}

void ServiceController::controlAutostart(bool enable)
{
    const QStringList units{QLatin1String(unitName)};
    constexpr bool runtimeOnly = false;
    constexpr bool force = true;
    if (enable)
        m_manager->asyncCall(QStringLiteral("EnableUnitFiles"), units, runtimeOnly, force);
    else
        m_manager->asyncCall(QStringLiteral("DisableUnitFiles"), units, runtimeOnly);
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
