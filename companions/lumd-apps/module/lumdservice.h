// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/lumdclient.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

/// lumd as the window sees it: whether it is there, and whether it answers. Nothing here waits.
class LumdService : public QObject
{
    Q_OBJECT

public:
    /// What the window can count on.
    enum class Presence {
        Unknown, ///< asked, not answered yet
        Absent, ///< nobody owns the name
        Refused, ///< the bus does not let this user in
        Outdated, ///< it does not tell of its apps
        Present,
    };

    explicit LumdService(QObject *parent = nullptr);

    /// For calls and signals. Results go through `counted`.
    LumdClient &client() { return m_client; }
    Presence presence() const { return m_presence; }
    /// Of no meaning unless present.
    const DaemonState &state() const { return m_state; }
    /// The runtime is up, and package changes are handed over to it at once.
    bool isRuntimeReady() const { return m_state.isRuntimeUp() && m_state.isReady; }
    /// A call has had no answer for five seconds.
    bool answersLate() const { return m_answersLate; }

    /// What is to be given to an operation of the client: counts as a call that is waited for, and
    /// forgets `done` with `context`.
    template <typename Value> Done<Value> counted(QObject *context, const Done<Value> &done)
    {
        begin();
        return [this, guard = QPointer<QObject>(context), done](const Answer<Value> &answer) {
            end();
            if (guard)
                done(answer);
        };
    }

Q_SIGNALS:
    void presenceChanged();
    void stateChanged();
    void answersLateChanged();

private:
    void ask();
    void onState(const Answer<DaemonState> &answer);
    void setPresence(Presence presence);
    void begin();
    void end();

    LumdClient m_client;
    Presence m_presence = Presence::Unknown;
    DaemonState m_state;
    QTimer m_patience;
    int m_pending = 0;
    bool m_answersLate = false;
};
