// SPDX-License-Identifier: BSD-3-Clause
// Preloaded into the daemon, it takes the time out of its waits. A sleep is told on standard
// error, as "sleep MILLISECONDS", and returns at once. A wait for a program that has been
// started is told as "wait", with its deadline, and runs into it as soon as the file exists
// that DEADLINE_HAS_PASSED names.
#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

long milliseconds(const timespec &time)
{
    return time.tv_sec * 1000 + time.tv_nsec / 1000000;
}

// What the daemon starts takes its own time.
[[gnu::constructor]] void spareOtherPrograms()
{
    unsetenv("LD_PRELOAD");
}

} // namespace

extern "C" int nanosleep(const timespec *time, timespec *rest)
{
    std::fprintf(stderr, "sleep %ld\n", milliseconds(*time));
    if (rest)
        *rest = {};
    return 0;
}

extern "C" int ppoll(
    pollfd *files, nfds_t count, const timespec *deadline, const sigset_t *signalMask)
{
    using Poll = int (*)(pollfd *, nfds_t, const timespec *, const sigset_t *);
    static const auto poll = reinterpret_cast<Poll>(dlsym(RTLD_NEXT, "ppoll"));
    const char *const passed = std::getenv("DEADLINE_HAS_PASSED");
    if (!passed || !deadline)
        return poll(files, count, deadline, signalMask);

    std::fprintf(stderr, "wait %ld\n", milliseconds(*deadline));
    constexpr long step = 10;
    for (long left = milliseconds(*deadline); left > 0; left -= step) {
        // In this order, so that what was written before the file is still seen.
        const bool isOver = access(passed, F_OK) == 0;
        const timespec slice{0, std::min(left, step) * 1000000};
        const int ready = poll(files, count, &slice, signalMask);
        if (ready != 0 || isOver)
            return ready;
    }
    return 0;
}
