// SPDX-License-Identifier: BSD-3-Clause
#include "timed-qt5/wallclock.h"

Maemo::Timed::WallClock::Info::Info(const QString &zone) : m_timezone(zone) { }

QString Maemo::Timed::WallClock::Info::humanReadableTz() const
{
    return m_timezone;
}
