// SPDX-License-Identifier: BSD-3-Clause
#include "timed-qt5/interface.h"

#include "settingsrelay.h"
#include "timedate.h"

#include <QDBusConnection>

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
    const QDBusMessage question = Timedate::zoneQuestion();
    if (method != QLatin1String("get_wall_clock_info"))
        return question.createErrorReply(QDBusError::UnknownMethod, method);

    const QDBusMessage answer = QDBusConnection::systemBus().call(question);
    const QString zone = Timedate::zoneOf(answer);
    if (zone.isNull())
        return answer;
    return question.createReply(QVariant::fromValue(Info(zone)));
}
