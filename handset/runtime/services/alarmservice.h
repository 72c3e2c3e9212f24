// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

/// "alarm": android.app.IAlarmManager, which holds Android's time zone.
class AlarmService : public AndroidService
{
public:
    AlarmService(int sdk, EventLog *log);

    /// Null until one was set.
    QString timeZone() const { return m_timeZone; }

private:
    Call setTimeZone(AndroidParcel &request);

    QString m_timeZone;
};
