// SPDX-License-Identifier: BSD-3-Clause
#include "services/alarmservice.h"

#include "androidtimezone.h"

AlarmService::AlarmService(int sdk, EventLog *log)
    : AndroidService(QStringLiteral("alarm"), QStringLiteral("android.app.IAlarmManager"), sdk, log)
{
    add("setTimeZone", {3, 3, 3}, [this](AndroidParcel &request) { return setTimeZone(request); });
}

AndroidService::Call AlarmService::setTimeZone(AndroidParcel &request)
{
    const QString zone = request.readString16();
    return {{{QStringLiteral("zone"), describe(zone)}}, [this, zone](AndroidReply &reply) {
                // Android passes over a zone without a name
                if (!zone.isEmpty())
                    m_timeZone = androidTimeZone(zone);
                reply.writeNoException();
            }};
}
