// SPDX-License-Identifier: BSD-3-Clause
#include "notification.h"

#include "userbus/busstrings.h"
#include "userbus/userbus.h"

#include <systemd/sd-bus.h>

namespace {

constexpr char service[] = "org.freedesktop.Notifications";
constexpr char path[] = "/org/freedesktop/Notifications";
// The server decides how long the notification is shown.
constexpr qint32 defaultTimeout = -1;

// Of the types that the hints of a Notification have. All that can fail is the memory, and that
// spoils the message for good: the last result tells.
void appendHint(sd_bus_message *message, const QString &name, const QVariant &value)
{
    sd_bus_message_open_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv");
    appendString(message, name);
    if (value.userType() == QMetaType::Bool) {
        sd_bus_message_append(message, "v", "b", value.toInt());
    } else if (value.userType() == QMetaType::UChar) {
        sd_bus_message_append(message, "v", "y", value.toInt());
    } else {
        sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT, "s");
        appendString(message, value.toString());
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
}

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
    const QString icon = m_appIcon.isEmpty() ? m_icon : m_appIcon;
    const auto arguments = [appName = m_appName, icon, summary = m_summary, body = m_body,
                               hints = m_hints](sd_bus_message *message) {
        constexpr quint32 replaces = 0;
        appendString(message, appName);
        sd_bus_message_append(message, "u", replaces);
        for (const QString &text : {icon, summary, body})
            appendString(message, text);
        sd_bus_message_append(message, "as", 0); // actions
        sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
        for (auto hint = hints.cbegin(); hint != hints.cend(); ++hint)
            appendHint(message, hint.key(), hint.value());
        sd_bus_message_close_container(message);
        return sd_bus_message_append(message, "i", defaultTimeout);
    };
    UserBus::instance().post({service, path, service, "Notify", arguments});
}
