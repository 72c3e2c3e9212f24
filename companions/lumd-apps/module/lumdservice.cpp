// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/lumdservice.h"

using namespace std::chrono_literals;

namespace {

// lumd serves one call after the other; a window has the time.
constexpr auto timeLimit = 24h;
constexpr auto patience = 5s;

LumdService::Presence presenceBehind(const ClientError &error)
{
    switch (error.kind) {
    case ClientError::Kind::None:
        return LumdService::Presence::Present;
    case ClientError::Kind::Refused:
        return LumdService::Presence::Refused;
    case ClientError::Kind::TooOld:
    case ClientError::Kind::Failed:
        return LumdService::Presence::Outdated;
    case ClientError::Kind::NoDaemon:
    case ClientError::Kind::TimedOut:
        break;
    }
    return LumdService::Presence::Absent;
}

} // namespace

LumdService::LumdService(QObject *parent) : QObject(parent)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_answersLate = true;
        Q_EMIT answersLateChanged();
    });
    connect(&m_client, &LumdClient::daemonAppeared, this, &LumdService::ask);
    connect(
        &m_client, &LumdClient::daemonVanished, this, [this] { setPresence(Presence::Absent); });
    connect(&m_client, &LumdClient::stateChanged, this, [this](const DaemonState &state) {
        m_state = state;
        Q_EMIT stateChanged();
    });
    m_client.setTimeLimit(timeLimit);
    m_client.watch([this](const Answer<Nothing> &answer) {
        if (answer.error)
            setPresence(presenceBehind(answer.error));
        else
            ask();
    });
}

void LumdService::ask()
{
    m_client.fetchState(
        counted<DaemonState>(this, [this](const Answer<DaemonState> &answer) { onState(answer); }));
}

void LumdService::onState(const Answer<DaemonState> &answer)
{
    if (!answer.error)
        m_state = answer.value;
    setPresence(presenceBehind(answer.error));
    if (!answer.error)
        Q_EMIT stateChanged();
}

void LumdService::setPresence(Presence presence)
{
    if (presence == m_presence)
        return;
    m_presence = presence;
    Q_EMIT presenceChanged();
}

void LumdService::begin()
{
    ++m_pending;
    if (!m_patience.isActive() && !m_answersLate)
        m_patience.start();
}

void LumdService::end()
{
    --m_pending;
    // It answers: whoever still waits does so anew.
    m_patience.stop();
    if (m_pending > 0)
        m_patience.start();
    if (!m_answersLate)
        return;
    m_answersLate = false;
    Q_EMIT answersLateChanged();
}
