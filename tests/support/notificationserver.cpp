// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/notificationserver.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusError>

namespace {

/// A byte as a number: Qt would make a letter of it.
QString valueOf(const QVariant &hint)
{
    return hint.userType() == QMetaType::UChar ? QString::number(hint.toUInt()) : hint.toString();
}

QString textOf(const NotificationServer::Notice &notice)
{
    QStringList hints;
    for (auto hint = notice.hints.cbegin(); hint != notice.hints.cend(); ++hint)
        hints.append(QStringLiteral("%1=%2:%3")
                .arg(hint.key(), valueOf(hint.value()),
                    QString::fromLatin1(hint.value().typeName())));
    return QStringLiteral("\"%1\" %2 \"%3\" \"%4\" \"%5\" actions(%6) hints(%7) %8")
        .arg(notice.appName, QString::number(notice.replaces), notice.icon, notice.summary,
            notice.body, notice.actions.join(QLatin1Char(' ')), hints.join(QLatin1Char(' ')),
            QString::number(notice.timeout));
}

} // namespace

NotificationServer::NotificationServer(const QString &busAddress)
    : m_bus(QDBusConnection::connectToBus(
          busAddress, QStringLiteral("notificationserver-%1").arg(quintptr(this))))
{
    if (!m_bus.registerObject(
            QStringLiteral("/org/freedesktop/Notifications"), this, QDBusConnection::ExportAllSlots)
        || !m_bus.registerService(QStringLiteral("org.freedesktop.Notifications")))
        qFatal("notification server: %s", qPrintable(m_bus.lastError().message()));
}

NotificationServer::~NotificationServer()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
}

// What has been sent lies with the bus. While that answers the first question it reads what others
// have sent, and passes it on before it answers the second.
void NotificationServer::settle()
{
    const QString name = QStringLiteral("org.freedesktop.Notifications");
    for (int question = 0; question < 2; ++question)
        m_bus.interface()->isServiceRegistered(name);
    QCoreApplication::processEvents();
}

QStringList NotificationServer::texts()
{
    settle();
    QStringList texts;
    for (const Notice &notice : m_notices)
        texts.append(textOf(notice));
    return texts;
}

quint32 NotificationServer::Notify(const QString &appName, quint32 replaces, const QString &icon,
    const QString &summary, const QString &body, const QStringList &actions,
    const QVariantMap &hints, qint32 timeout)
{
    m_notices.append({appName, replaces, icon, summary, body, actions, hints, timeout});
    return quint32(m_notices.size());
}
