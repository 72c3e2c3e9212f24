// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/leapingclock.h"

#include <algorithm>
#include <atomic>

#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

namespace {

std::atomic<bool> leaps{false};

} // namespace

LeapingClock::LeapingClock()
{
    leaps = true;
}

LeapingClock::~LeapingClock()
{
    leaps = false;
}

/// In the place of the C library's, for the libraries too.
extern "C" int poll(pollfd *files, nfds_t count, int timeout)
{
    using Poll = int (*)(pollfd *, nfds_t, int);
    static const auto next = reinterpret_cast<Poll>(dlsym(RTLD_NEXT, "poll"));
    const bool isLeaping = leaps && timeout > 0 && gettid() == getpid();
    const int ready = next(files, count, isLeaping ? 0 : timeout);
    // Qt asks for a millisecond more than its next timer has left.
    if (isLeaping && ready == 0)
        shiftClock(std::chrono::milliseconds(std::max(timeout - 1, 1)));
    return ready;
}
