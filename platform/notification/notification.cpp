// SPDX-License-Identifier: BSD-3-Clause
#include "notification.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace {

constexpr char service[] = "org.freedesktop.Notifications";
constexpr char path[] = "/org/freedesktop/Notifications";
// The server decides how long the notification is shown.
constexpr qint32 defaultTimeout = -1;

} // namespace

Notification::Notification(QObject *parent) : QObject(parent) { }

void Notification::setAppName(const QString &name)
{
    m_appName = name;
}

void Notification::setAppIcon(const QString &icon)
{
    m_appIcon = icon;
}

void Notification::setIcon(const QString &icon)
{
    m_icon = icon;
    m_hints.insert(QStringLiteral("image-path"), icon);
}

void Notification::setIsTransient(bool transient)
{
    if (transient)
        m_hints.insert(QStringLiteral("transient"), true);
    else
        m_hints.remove(QStringLiteral("transient"));
}

void Notification::setUrgency(Urgency urgency)
{
    m_hints.insert(QStringLiteral("urgency"), QVariant::fromValue(static_cast<uchar>(urgency)));
}

void Notification::setPreviewSummary(const QString &summary)
{
    m_summary = summary;
}

void Notification::setPreviewBody(const QString &body)
{
    m_body = body;
}

void Notification::publish()
{
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String(service),
        QLatin1String(path), QLatin1String(service), QStringLiteral("Notify"));
    constexpr quint32 replaces = 0;
    message << m_appName << replaces << (m_appIcon.isEmpty() ? m_icon : m_appIcon) << m_summary
            << m_body << QStringList() << m_hints << defaultTimeout;
    QDBusConnection::sessionBus().send(message);
}
