// SPDX-License-Identifier: BSD-3-Clause
// Preloaded into a process, or linked into a test, it sets the monotonic clock ahead: by the
// nanoseconds in the file that CLOCK_SHIFT names, or by what the test has asked for.
#include "tests/support/clockshift.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace {

std::atomic<int64_t> own{0};
std::atomic<int64_t> *shift = &own;

[[gnu::constructor]] void readShift()
{
    // What the process starts has the true time.
    unsetenv("LD_PRELOAD");
    const char *const path = std::getenv("CLOCK_SHIFT");
    const int file = path ? open(path, O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0)
        return;
    void *const mapped = mmap(nullptr, sizeof(int64_t), PROT_READ, MAP_SHARED, file, 0);
    close(file);
    if (mapped != MAP_FAILED)
        shift = static_cast<std::atomic<int64_t> *>(mapped);
}

} // namespace

void shiftClock(std::chrono::milliseconds time)
{
    own += std::chrono::nanoseconds(time).count();
}

extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && clock == CLOCK_MONOTONIC) {
        constexpr int64_t second = 1000000000;
        const int64_t nanoseconds = time->tv_nsec + *shift;
        time->tv_sec += nanoseconds / second;
        time->tv_nsec = nanoseconds % second;
    }
    return int(result);
}
