// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

/// org.freedesktop.Notifications on a session bus: records what it is asked to show. It
/// answers from the event loop of the thread that made it.
class NotificationServer : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    /// The arguments of one call of Notify.
    struct Notice
    {
        QString appName;
        quint32 replaces = 0;
        QString icon;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        qint32 timeout = 0;
    };

    /// Ends the test process with a message when it cannot own the name on that bus.
    explicit NotificationServer(const QString &busAddress);
    ~NotificationServer() override;

    QVector<Notice> notices() const { return m_notices; }
    /// One line a notice, of everything in it, of all that were sent before the call:
    /// `"app" 0 "icon" "summary" "body" actions() hints(transient=true:bool) -1`.
    QStringList texts();
    void clear() { m_notices.clear(); }

public Q_SLOTS:
    /// The method of the bus; gives the notice's number.
    quint32 Notify(const QString &appName, quint32 replaces, const QString &icon,
        const QString &summary, const QString &body, const QStringList &actions,
        const QVariantMap &hints, qint32 timeout);

private:
    void settle();

    QDBusConnection m_bus;
    QVector<Notice> m_notices;
};
