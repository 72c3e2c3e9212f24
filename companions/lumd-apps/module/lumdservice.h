// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <functional>

/// lumd on the system bus. Nothing here waits: results come from the event loop, and a lumd that
/// hangs shows in `answersLate`.
class LumdService : public QObject
{
    Q_OBJECT

public:
    /// What the window can count on.
    enum class Presence {
        Unknown, ///< asked, not answered yet
        Absent, ///< nobody owns the name
        Refused, ///< the bus lets this user not in
        Outdated, ///< a lumd without com.tovra.lumd.Monitor1
        Present,
    };
    /// The reply or the error.
    using Handler = std::function<void(const QDBusMessage &reply)>;

    explicit LumdService(QObject *parent = nullptr);

    Presence presence() const { return m_presence; }
    /// com.tovra.lumd.Monitor1's properties; empty unless present.
    QVariantMap properties() const { return m_properties; }
    /// A call has had no answer for five seconds.
    bool answersLate() const { return m_answersLate; }

    /// Calls a method of com.tovra.lumd; `handler`, which may be empty, is dropped with `context`.
    /// lumd serves one call after the other, so there is no time limit.
    void call(const QString &method, const QVariantList &arguments, QObject *context = nullptr,
        const Handler &handler = {});
    /// The same for the one method that takes its time by design.
    void callPatiently(const QString &method, QObject *context, const Handler &handler);
    /// Calls a method of com.tovra.lumd.Monitor1.
    void callMonitor(const QString &method, QObject *context, const Handler &handler);

Q_SIGNALS:
    void presenceChanged();
    void propertiesChanged();
    void answersLateChanged();

    void startOnBootChanged(const QString &package, bool isAllowed);
    void installFinished(const QString &package, bool isSuccess, const QString &message);
    void removeFinished(const QString &package, bool isSuccess);
    void requestQueued(const QString &kind, const QString &what);
    void packageRemoved(const QString &package);
    /// A launcher came, changed or went.
    void launchersChanged();

private Q_SLOTS:
    void onPropertiesChanged(
        const QString &interface, const QVariantMap &changed, const QStringList &invalidated);

private:
    enum class Patience { Usual, Long };

    void listen();
    void appear();
    void disappear();
    void onProperties(const QDBusMessage &reply);
    void setPresence(Presence presence);
    void send(
        const QDBusMessage &message, Patience patience, QObject *context, const Handler &handler);
    void count(int calls);

    QDBusConnection m_bus;
    Presence m_presence = Presence::Unknown;
    QVariantMap m_properties;
    QTimer m_patience;
    int m_pending = 0;
    bool m_answersLate = false;
};
