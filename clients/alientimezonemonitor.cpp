// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alientimezonemonitor.h"

#include "binder/gbinderhandles.h"
#include "binder/logging.h"

#include <timed-qt5/interface.h>

#include <QDBusReply>

using Maemo::Timed::WallClock::Info;

namespace {

// android.app.IAlarmManager.setTimeZone, the same in all supported releases.
constexpr quint32 setTimeZoneCode = 3;

const char *settingsChangedSlot()
{
    return SLOT(settingsChanged(Maemo::Timed::WallClock::Info, bool));
}

} // namespace

AlienTimezoneMonitor::AlienTimezoneMonitor()
    : AlienBinderConnection("alarm", "android.app.IAlarmManager", true, nullptr)
{
    Maemo::Timed::Interface timed;
    timed.settings_changed_connect(this, settingsChangedSlot());
    const QDBusReply<Info> reply = timed.call(QStringLiteral("get_wall_clock_info"));
    m_currentTimezone = reply.value().humanReadableTz();
    connect(this, &AlienBinderConnection::connectionChanged, this,
        &AlienTimezoneMonitor::onServiceConnectionChanged);
}

AlienTimezoneMonitor::~AlienTimezoneMonitor()
{
    // The base reports a last disconnect when this class has gone already.
    disconnect(this, &AlienBinderConnection::connectionChanged, this, nullptr);
    Maemo::Timed::Interface().settings_changed_disconnect(this, settingsChangedSlot());
}

void AlienTimezoneMonitor::settingsChanged(const Info &newInfo, bool timeChanged)
{
    Q_UNUSED(timeChanged)
    const QString zone = newInfo.humanReadableTz();
    if (zone == m_currentTimezone)
        return;
    pushTimezone(zone.toLatin1().constData());
    m_currentTimezone = zone;
}

void AlienTimezoneMonitor::onServiceConnectionChanged(bool connected)
{
    if (connected)
        pushTimezone(m_currentTimezone.toLatin1().constData());
}

void AlienTimezoneMonitor::pushTimezone(const char *zone)
{
    GBinderClient *const link = client();
    if (!link)
        return;
    GBinder::RemoteReply reply; // released behind the request
    const GBinder::LocalRequest request(gbinder_client_new_request(link));
    GBinderWriter writer;
    gbinder_local_request_init_writer(request.get(), &writer);
    gbinder_writer_append_string16(&writer, zone);
    int status{};
    reply.reset(gbinder_client_transact_sync_reply(link, setTimeZoneCode, request.get(), &status));
    if (!reply || status != 0)
        qCWarning(binderLog) << "Failed to set alien timezone:" << status;
}
