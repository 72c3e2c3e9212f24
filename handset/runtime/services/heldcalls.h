// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QVector>

#include <functional>
#include <optional>

/// The calls of a service that takes its time with them, or hangs. Nobody else waits
/// meanwhile.
class HeldCalls : public QObject
{
    Q_OBJECT

public:
    /// Carries a call out and answers it.
    using Finish = std::function<void()>;

    /// Calls from now on are held.
    /// @param delay of each, in milliseconds; without one they hang until release().
    void hold(std::optional<int> delay);
    /// Whether a call is to be handed to add().
    bool holding() const { return m_holding; }
    void add(const Finish &finish);
    /// Finishes the calls that are held, the oldest first, and holds none from now on.
    void release();
    int count() const { return m_calls.size(); }

private:
    struct Call
    {
        quint64 number;
        Finish finish;
    };

    void finish(quint64 number);

    bool m_holding = false;
    std::optional<int> m_delay;
    QVector<Call> m_calls;
    quint64 m_lastNumber = 0;
};
