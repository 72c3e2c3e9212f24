// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusMessage>
#include <QString>

/// Names of org.freedesktop.timedate1(5), and its question for the time zone.
namespace Timedate {

constexpr char service[] = "org.freedesktop.timedate1";
constexpr char path[] = "/org/freedesktop/timedate1";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";
constexpr char timezoneProperty[] = "Timezone";

/// Asks for the host's time zone.
QDBusMessage zoneQuestion();

/// The zone in the answer to zoneQuestion(). Where there is none, the one that the link
/// /etc/localtime names; a null string when that is not to be had either.
QString zoneOf(const QDBusMessage &answer);

} // namespace Timedate
