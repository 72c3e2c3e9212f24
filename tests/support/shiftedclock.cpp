// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/shiftedclock.h"

#include "tests/support/daemonprocess.h"

#include <QFile>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>

namespace {

constexpr char path[] = "/run/clock-shift";

} // namespace

ShiftedClock::ShiftedClock()
{
    const int file = ::open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0 || ::ftruncate(file, sizeof(int64_t)) != 0)
        qFatal("cannot make %s", path);
    m_shift = ::mmap(nullptr, sizeof(int64_t), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (m_shift == MAP_FAILED)
        qFatal("cannot map %s", path);
}

ShiftedClock::~ShiftedClock()
{
    ::munmap(m_shift, sizeof(int64_t));
}

void ShiftedClock::giveTo(DaemonProcess &process)
{
    process.preload(QStringLiteral(CLOCK_MODULE));
    process.setEnvironment(QStringLiteral("CLOCK_SHIFT"), QString::fromLatin1(path));
}

void ShiftedClock::forward(std::chrono::milliseconds time)
{
    *static_cast<std::atomic<int64_t> *>(m_shift) += std::chrono::nanoseconds(time).count();
}
