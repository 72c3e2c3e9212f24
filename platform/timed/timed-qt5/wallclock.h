// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMetaType>
#include <QString>

namespace Maemo {
namespace Timed {
namespace WallClock {

/// What the host's clock is set to.
class Info
{
public:
    Info() = default;
    explicit Info(const QString &zone);

    /// The time zone, as the tz database names it ("Europe/Helsinki"). Empty when unknown.
    QString humanReadableTz() const;

private:
    QString m_timezone;
};

} // namespace WallClock
} // namespace Timed
} // namespace Maemo

Q_DECLARE_METATYPE(Maemo::Timed::WallClock::Info)
