// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/leapingclock.h"

#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <ctime>

namespace {

constexpr int64_t nanoseconds = 1000000000;
constexpr int64_t millisecond = 1000000;

std::atomic<int64_t> leapt{0}; // nanoseconds; the monotonic time of the process while not 0

int64_t realTime(clockid_t clock)
{
    using ClockGettime = int (*)(clockid_t, timespec *);
    static const auto next = reinterpret_cast<ClockGettime>(dlsym(RTLD_NEXT, "clock_gettime"));
    timespec now = {};
    next(clock, &now);
    return now.tv_sec * nanoseconds + now.tv_nsec;
}

} // namespace

LeapingClock::LeapingClock()
{
    leapt = realTime(CLOCK_MONOTONIC);
}

LeapingClock::~LeapingClock()
{
    leapt = 0;
}

extern "C" int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    const int64_t frozen = clock == CLOCK_MONOTONIC ? leapt.load() : 0;
    const int64_t time = frozen ? frozen : realTime(clock);
    *now = {time / nanoseconds, time % nanoseconds};
    return 0;
}

extern "C" int poll(pollfd *files, nfds_t count, int timeout)
{
    using Poll = int (*)(pollfd *, nfds_t, int);
    static const auto next = reinterpret_cast<Poll>(dlsym(RTLD_NEXT, "poll"));
    const bool isLeaping = leapt != 0 && timeout > 0 && gettid() == getpid();
    const int ready = next(files, count, isLeaping ? 0 : timeout);
    // Qt asks for a millisecond more than its next timer has left.
    if (isLeaping && ready == 0)
        leapt += std::max(timeout - 1, 1) * millisecond;
    return ready;
}
