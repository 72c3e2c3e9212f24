// SPDX-License-Identifier: BSD-3-Clause
// Preloaded into the daemon, it takes the time out of its waits. A sleep is told on standard
// error, as "sleep MILLISECONDS", and returns at once.
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
