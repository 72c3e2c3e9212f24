// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>

#include <optional>

class LumdService;

/// The Android runtime as the user meets it: its state in words, start, stop, and whether it starts
/// with the device.
class RuntimeControl : public QObject
{
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString title READ title NOTIFY stateChanged)
    Q_PROPERTY(QString explanation READ explanation NOTIFY stateChanged)
    Q_PROPERTY(bool isReachable READ isReachable NOTIFY stateChanged)
    Q_PROPERTY(bool canStart READ canStart NOTIFY stateChanged)
    Q_PROPERTY(bool canStop READ canStop NOTIFY stateChanged)
    Q_PROPERTY(bool isLate READ isLate NOTIFY isLateChanged)
    Q_PROPERTY(bool knowsStartOnBoot READ knowsStartOnBoot NOTIFY startOnBootChanged)
    Q_PROPERTY(bool startOnBoot READ startOnBoot NOTIFY startOnBootChanged)

public:
    enum State {
        Unknown, ///< lumd has not answered yet
        NoDaemon,
        Refused,
        Outdated,
        Down,
        Failed,
        Starting, ///< until package changes are handed over at once
        Up,
        Stopping,
    };
    Q_ENUM(State)

    explicit RuntimeControl(LumdService *service, QObject *parent = nullptr);

    State state() const;
    QString title() const;
    /// What the state means and what can be done about it; may be empty.
    QString explanation() const;
    /// lumd is there and answers questions.
    bool isReachable() const { return state() >= Down; }
    bool canStart() const { return state() == Down || state() == Failed; }
    bool canStop() const { return state() == Up || state() == Starting; }
    /// lumd keeps a question waiting.
    bool isLate() const;
    bool knowsStartOnBoot() const { return m_startOnBoot.has_value(); }
    bool startOnBoot() const { return m_startOnBoot.value_or(false); }

    Q_INVOKABLE void start();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void setStartOnBoot(bool isWanted);

Q_SIGNALS:
    void stateChanged();
    void isLateChanged();
    void startOnBootChanged();

private:
    void readStartOnBoot();

    LumdService *m_service;
    std::optional<bool> m_startOnBoot;
};
