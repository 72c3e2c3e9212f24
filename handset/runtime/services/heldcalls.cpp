// SPDX-License-Identifier: BSD-3-Clause
#include "services/heldcalls.h"

#include <QTimer>

#include <algorithm>
#include <utility>

void HeldCalls::hold(std::optional<int> delay)
{
    m_holding = true;
    m_delay = delay;
}

void HeldCalls::add(const Finish &finish)
{
    const quint64 number = ++m_lastNumber;
    m_calls.append({number, finish});
    if (m_delay)
        QTimer::singleShot(*m_delay, this, [this, number] { this->finish(number); });
}

void HeldCalls::release()
{
    m_holding = false;
    const QVector<Call> calls = std::exchange(m_calls, {});
    for (const Call &call : calls)
        call.finish();
}

void HeldCalls::finish(quint64 number)
{
    const auto found = std::find_if(m_calls.begin(), m_calls.end(),
        [number](const Call &call) { return call.number == number; });
    if (found == m_calls.end())
        return;
    const Finish finish = found->finish;
    m_calls.erase(found);
    finish();
}
