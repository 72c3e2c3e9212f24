// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"

#include <timed-qt5/wallclock.h>

/// Client of Android's alarm manager, which keeps the runtime's time zone equal to the
/// host's: it passes the zone on at each connect and whenever the host's changes.
class AlienTimezoneMonitor : public AlienBinderConnection
{
    Q_OBJECT

public:
    /// Blocks while the host tells its zone. Nothing is passed on here, also when the runtime
    /// is active already.
    AlienTimezoneMonitor();
    ~AlienTimezoneMonitor() override;

private Q_SLOTS:
    void settingsChanged(const Maemo::Timed::WallClock::Info &newInfo, bool timeChanged);
    void onServiceConnectionChanged(bool connected);

private:
    void pushTimezone(const char *zone);

    QString m_currentTimezone;
};
