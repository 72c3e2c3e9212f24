// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/runtimecontrol.h"

#include "companions/lumd-apps/lumdservice.h"

#include <QGuiApplication>

namespace {

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
    : QObject(parent), m_service(service)
{
    connect(service, &LumdService::presenceChanged, this, &RuntimeControl::stateChanged);
    connect(service, &LumdService::stateChanged, this, &RuntimeControl::stateChanged);
    connect(service, &LumdService::stateChanged, this, &RuntimeControl::readStartOnBoot);
    connect(service, &LumdService::answersLateChanged, this, &RuntimeControl::isLateChanged);
    // Somebody may have enabled or disabled the unit while the user was elsewhere.
    connect(
        qGuiApp, &QGuiApplication::applicationStateChanged, this, &RuntimeControl::readStartOnBoot);
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
    return stateOf(m_service->state().runtimeState, m_service->state().isReady);
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
    m_service->client().runRuntime(true, m_service->counted<Nothing>(this, [](const auto &) { }));
}

void RuntimeControl::stop()
{
    m_service->client().runRuntime(false, m_service->counted<Nothing>(this, [](const auto &) { }));
}

void RuntimeControl::setStartOnBoot(bool isWanted)
{
    // lumd has passed it on to systemd when it answers.
    m_service->client().setRuntimeOnBoot(
        isWanted, m_service->counted<Nothing>(this, [this](const auto &) { readStartOnBoot(); }));
}

void RuntimeControl::readStartOnBoot()
{
    if (!isReachable())
        return;
    m_service->client().fetchRuntimeOnBoot([this](const Answer<bool> &answer) {
        m_startOnBoot = answer.error ? std::nullopt : std::make_optional(answer.value);
        Q_EMIT startOnBootChanged();
    });
}
