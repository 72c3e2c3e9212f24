// SPDX-License-Identifier: BSD-3-Clause
#include "timed-qt5/interface.h"

#include "settingsrelay.h"
#include "timedate.h"

#include <QDBusConnection>
#include <QDBusReply>
#include <QDBusVariant>

using Maemo::Timed::WallClock::Info;

bool Maemo::Timed::Interface::settings_changed_connect(QObject *object, const char *slot)
{
    auto *const relay = new SettingsRelay(object);
    return relay->listen()
        && QObject::connect(
            relay, SIGNAL(settingsChanged(Maemo::Timed::WallClock::Info, bool)), object, slot);
}

bool Maemo::Timed::Interface::settings_changed_disconnect(QObject *object, const char *slot)
{
    Q_UNUSED(slot)
    auto *const relay = object->findChild<SettingsRelay *>(QString(), Qt::FindDirectChildrenOnly);
    delete relay;
    return relay != nullptr;
}

QDBusMessage Maemo::Timed::Interface::call(const QString &method)
{
    QDBusMessage get = QDBusMessage::createMethodCall(QLatin1String(Timedate::service),
        QLatin1String(Timedate::path), QLatin1String(Timedate::propertiesInterface),
        QStringLiteral("Get"));
    get << QString(QLatin1String(Timedate::service))
        << QString(QLatin1String(Timedate::timezoneProperty));
    if (method != QLatin1String("get_wall_clock_info"))
        return get.createErrorReply(QDBusError::UnknownMethod, method);

    const QDBusMessage answer = QDBusConnection::systemBus().call(get);
    const QDBusReply<QDBusVariant> zone = answer;
    if (!zone.isValid())
        return answer;
    return get.createReply(QVariant::fromValue(Info(zone.value().variant().toString())));
}
