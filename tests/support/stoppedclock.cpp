// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/stoppedclock.h"

#include <atomic>
#include <cstdint>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t longestStop = 20 * second;

std::atomic<std::int64_t> stoppedAt{0}; // nanoseconds of the real clock; 0 while it runs
std::atomic<std::int64_t> ahead{0}; // what was added to it

std::int64_t realTime()
{
    timespec time{};
    syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return time.tv_sec * second + time.tv_nsec;
}

std::int64_t shownTime()
{
    const std::int64_t real = realTime();
    const std::int64_t stop = stoppedAt;
    if (stop == 0)
        return real + ahead;
    return (real - stop > longestStop ? real - longestStop : stop) + ahead;
}

} // namespace

/// In the place of the C library's, for the libraries too.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    if (clock != CLOCK_MONOTONIC)
        return int(syscall(SYS_clock_gettime, clock, time));
    const std::int64_t now = shownTime();
    time->tv_sec = now / second;
    time->tv_nsec = now % second;
    return 0;
}

StoppedClock::StoppedClock()
{
    stoppedAt = realTime();
}

StoppedClock::~StoppedClock()
{
    const std::int64_t shown = shownTime();
    stoppedAt = 0;
    ahead = shown - realTime();
}

void StoppedClock::advance(std::chrono::milliseconds time)
{
    ahead += std::chrono::nanoseconds(time).count();
}
