// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/seat.h"

#include "runtime/seatname.h"

#include <QtDebug>

#include <systemd/sd-login.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <ctime>
#include <memory>

#include <poll.h>

namespace {

struct ReleaseMonitor
{
    void operator()(sd_login_monitor *monitor) const { sd_login_monitor_unref(monitor); }
};
using LoginMonitor = std::unique_ptr<sd_login_monitor, ReleaseMonitor>;

quint64 monotonicMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<quint64>(now.tv_sec) * 1000000 + static_cast<quint64>(now.tv_nsec) / 1000;
}

LoginMonitor watchSeats()
{
    sd_login_monitor *monitor = nullptr;
    if (sd_login_monitor_new("seat", &monitor) < 0)
        qWarning() << "Failed to monitor for seat changes";
    return LoginMonitor(monitor);
}

} // namespace

int pollTimeout(quint64 deadline, quint64 now)
{
    if (deadline == UINT64_MAX)
        return -1;
    if (now >= deadline)
        return 0;
    return static_cast<int>(std::min<quint64>((deadline - now) / 1000, INT_MAX));
}

std::optional<uid_t> waitForActiveSeat()
{
    const LoginMonitor monitor = watchSeats();
    if (!monitor)
        return std::nullopt;

    pollfd watched{};
    watched.fd = sd_login_monitor_get_fd(monitor.get());
    watched.events = static_cast<short>(sd_login_monitor_get_events(monitor.get()));
    if (watched.fd < 0 || !(watched.events & POLLIN)) {
        qWarning() << "Unable to poll for systemd login events";
        return std::nullopt;
    }

    uid_t uid{};
    while (sd_seat_get_active(seatName, nullptr, &uid) < 0) {
        std::uint64_t deadline = UINT64_MAX;
        sd_login_monitor_get_timeout(monitor.get(), &deadline);
        if (poll(&watched, 1, pollTimeout(deadline, monotonicMicroseconds())) < 0)
            qWarning() << "poll failed";
        sd_login_monitor_flush(monitor.get());
    }
    return uid;
}
