// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/leapingclock.h"

#include <algorithm>
#include <atomic>

#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

std::atomic<bool> leaps{false};

bool isLeaping()
{
    return leaps && gettid() == getpid();
}

/// Qt asks for a millisecond more than its next timer has left.
void leapOver(std::chrono::milliseconds wait)
{
    shiftClock(std::max(wait - 1ms, 1ms));
}

} // namespace

LeapingClock::LeapingClock()
{
    leaps = true;
}

LeapingClock::~LeapingClock()
{
    leaps = false;
}

/// In the place of the C library's, for the libraries too: glib waits by this or the next.
extern "C" int poll(pollfd *files, nfds_t count, int timeout)
{
    static const auto next = reinterpret_cast<decltype(&poll)>(dlsym(RTLD_NEXT, "poll"));
    const bool leap = timeout > 0 && isLeaping();
    const int ready = next(files, count, leap ? 0 : timeout);
    if (leap && ready == 0)
        leapOver(std::chrono::milliseconds(timeout));
    return ready;
}

extern "C" int ppoll(pollfd *files, nfds_t count, const timespec *timeout, const sigset_t *signals)
{
    static const auto next = reinterpret_cast<decltype(&ppoll)>(dlsym(RTLD_NEXT, "ppoll"));
    const auto wait = timeout
        ? std::chrono::seconds(timeout->tv_sec) + std::chrono::nanoseconds(timeout->tv_nsec)
        : 0ns;
    const bool leap = wait > 0ns && isLeaping();
    const timespec none{};
    const int ready = next(files, count, leap ? &none : timeout, signals);
    if (leap && ready == 0)
        leapOver(std::chrono::ceil<std::chrono::milliseconds>(wait));
    return ready;
}
