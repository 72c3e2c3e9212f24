// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusMessage>
#include <QString>

class QObject;

namespace Maemo {
namespace Timed {

/// The host's clock settings, mapped to systemd's org.freedesktop.timedate1.
class Interface
{
public:
    /// Connects @p slot of @p object, which takes (Maemo::Timed::WallClock::Info, bool), to
    /// changes of the settings. The connection outlives this object. False when the bus
    /// refused.
    bool settings_changed_connect(QObject *object, const char *slot);
    bool settings_changed_disconnect(QObject *object, const char *slot);

    /// Calls @p method and waits for the answer. The one method is "get_wall_clock_info",
    /// whose reply holds a WallClock::Info.
    QDBusMessage call(const QString &method);
};

} // namespace Timed
} // namespace Maemo
