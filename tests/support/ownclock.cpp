// SPDX-License-Identifier: BSD-3-Clause
// Part of a test, or preloaded into the daemon: there the clock is ahead by the nanoseconds in
// the file that CLOCK_SHIFT names.
#include "tests/support/ownclock.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t longestStop = 20 * second;

std::atomic<std::int64_t> stoppedAt{0}; // nanoseconds of the real clock; 0 while it runs
std::atomic<std::int64_t> ownShift{0};
std::atomic<std::int64_t> *shift = &ownShift; // nanoseconds

[[gnu::constructor]] void findShift()
{
    const char *const path = std::getenv("CLOCK_SHIFT");
    if (!path)
        return;
    // What the process starts has the true time.
    unsetenv("LD_PRELOAD");
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return;
    void *const mapped = mmap(nullptr, sizeof(std::int64_t), PROT_READ, MAP_SHARED, file, 0);
    close(file);
    if (mapped != MAP_FAILED)
        shift = static_cast<std::atomic<std::int64_t> *>(mapped);
}

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
        return real + *shift;
    return (real - stop > longestStop ? real - longestStop : stop) + *shift;
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

void shiftClock(std::chrono::milliseconds time)
{
    *shift += std::chrono::nanoseconds(time).count();
}

StoppedClock::StoppedClock()
{
    stoppedAt = realTime();
}

StoppedClock::~StoppedClock()
{
    const std::int64_t shown = shownTime();
    stoppedAt = 0;
    *shift = shown - realTime();
}
