// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

#include <optional>

/// The home screen, on one user's bus; it answers from the event loop.
class HomeScreen : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.teskmobile.glossbar.LauncherModel")

public:
    enum class Manner { Answers, Refuses, Waits };

    explicit HomeScreen(const QString &busAddress, Manner manner = Manner::Answers);
    ~HomeScreen() override { QDBusConnection::disconnectFromBus(m_bus.name()); }

    /// "METHOD(ARGUMENT, ...)"
    QStringList calls() const { return m_calls; }
    /// Answers the call that waits.
    void answer();

public Q_SLOTS:
    void updatingStarted(
        const QString &name, const QString &second, const QString &third, const QString &path);
    void updatingFinished(const QString &name);

private:
    void record(const QString &text);

    QDBusConnection m_bus;
    Manner m_manner;
    QStringList m_calls;
    std::optional<QDBusMessage> m_call;
};

/// The calls as the home screen tells of them.
QString started(const QString &name, const QString &path);
QString finished(const QString &name);

/// Makes the desktop entry of a launcher of that package; gives its path.
QString makeEntry(const QString &name, const QByteArray &package);
