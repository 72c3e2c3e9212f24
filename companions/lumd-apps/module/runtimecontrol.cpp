// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/runtimecontrol.h"

#include "companions/lumd-apps/lumdservice.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>

namespace {

// org.freedesktop.systemd1(5)
constexpr QLatin1String systemd("org.freedesktop.systemd1");
constexpr QLatin1String managerPath("/org/freedesktop/systemd1");
constexpr QLatin1String managerInterface("org.freedesktop.systemd1.Manager");
constexpr QLatin1String unitPath("/org/freedesktop/systemd1/unit/aliendalvik_2eservice");
constexpr QLatin1String unitInterface("org.freedesktop.systemd1.Unit");
constexpr QLatin1String propertiesInterface("org.freedesktop.DBus.Properties");
constexpr QLatin1String unitFileState("UnitFileState");

RuntimeControl::State stateOf(const QString &unitState, bool isReady)
{
    if (unitState == QLatin1String("active") || unitState == QLatin1String("reloading"))
        return isReady ? RuntimeControl::Up : RuntimeControl::Starting;
    if (unitState == QLatin1String("activating"))
        return RuntimeControl::Starting;
    if (unitState == QLatin1String("deactivating"))
        return RuntimeControl::Stopping;
    return unitState == QLatin1String("failed") ? RuntimeControl::Failed : RuntimeControl::Down;
}

} // namespace

RuntimeControl::RuntimeControl(LumdService *service, QObject *parent)
    : QObject(parent),
      m_service(service)
{
    connect(service, &LumdService::presenceChanged, this, &RuntimeControl::stateChanged);
    connect(service, &LumdService::propertiesChanged, this, &RuntimeControl::stateChanged);
    connect(service, &LumdService::answersLateChanged, this, &RuntimeControl::isLateChanged);

    QDBusConnection bus = QDBusConnection::systemBus();
    bus.connect(systemd, unitPath, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
        SLOT(onUnitChanged(QString, QVariantMap, QStringList)));
    // systemd tells without a value when a unit was enabled or disabled.
    bus.connect(systemd, managerPath, managerInterface, QStringLiteral("UnitFilesChanged"), this,
        SLOT(readUnit()));
    readUnit();
}

RuntimeControl::State RuntimeControl::state() const
{
    switch (m_service->presence()) {
    case LumdService::Presence::Unknown:
        return Unknown;
    case LumdService::Presence::Absent:
        return NoDaemon;
    case LumdService::Presence::Refused:
        return Refused;
    case LumdService::Presence::Outdated:
        return Outdated;
    case LumdService::Presence::Present:
        break;
    }
    const QVariantMap properties = m_service->properties();
    return stateOf(properties.value(QStringLiteral("RuntimeState")).toString(),
        properties.value(QStringLiteral("Ready")).toBool());
}

QString RuntimeControl::title() const
{
    switch (state()) {
    case Unknown:
        return qtTrId("lumd-apps-state-unknown");
    case NoDaemon:
        return qtTrId("lumd-apps-state-no-daemon");
    case Refused:
        return qtTrId("lumd-apps-state-refused");
    case Outdated:
        return qtTrId("lumd-apps-state-outdated");
    case Down:
        return qtTrId("lumd-apps-state-down");
    case Failed:
        return qtTrId("lumd-apps-state-failed");
    case Starting:
        return qtTrId("lumd-apps-state-starting");
    case Up:
        return qtTrId("lumd-apps-state-up");
    case Stopping:
        return qtTrId("lumd-apps-state-stopping");
    }
    return {};
}

QString RuntimeControl::explanation() const
{
    switch (state()) {
    case NoDaemon:
        return qtTrId("lumd-apps-explain-no-daemon");
    case Refused:
        return qtTrId("lumd-apps-explain-refused");
    case Outdated:
        return qtTrId("lumd-apps-explain-outdated");
    case Down:
        return qtTrId("lumd-apps-explain-down");
    case Failed:
        return qtTrId("lumd-apps-explain-failed");
    case Starting:
        return qtTrId("lumd-apps-explain-starting");
    case Unknown:
    case Up:
    case Stopping:
        break;
    }
    return {};
}

bool RuntimeControl::isLate() const
{
    return m_service->answersLate();
}

void RuntimeControl::start()
{
    m_service->call(QStringLiteral("controlService"), {true});
}

void RuntimeControl::stop()
{
    m_service->call(QStringLiteral("controlService"), {false});
}

void RuntimeControl::setStartOnBoot(bool isWanted)
{
    m_service->call(QStringLiteral("controlServiceAutostart"), {isWanted});
}

void RuntimeControl::readUnit()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        systemd, unitPath, propertiesInterface, QStringLiteral("GetAll"));
    question << QString(unitInterface);
    auto *const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        onUnit(watcher->reply());
    });
}

void RuntimeControl::onUnit(const QDBusMessage &reply)
{
    // Empty for a unit that is not installed, as for an error.
    const auto properties = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    m_unitFileState = properties.value(unitFileState).toString();
    Q_EMIT startOnBootChanged();
}

void RuntimeControl::onUnitChanged(
    const QString &interface, const QVariantMap &changed, const QStringList &invalidated)
{
    if (interface == unitInterface
        && (changed.contains(unitFileState) || invalidated.contains(unitFileState)))
        readUnit();
}
