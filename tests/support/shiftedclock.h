// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

#include <chrono>

class DaemonProcess;

/// Lets a process believe that time has passed: what it reads off the monotonic clock lies
/// ahead by a shift. What sleeps in the kernel has to be woken to notice. One at a time.
class ShiftedClock
{
public:
    ShiftedClock();
    ~ShiftedClock();
    Q_DISABLE_COPY(ShiftedClock)

    /// Before its start. The process that has not been told of a clock has the true time.
    void giveTo(DaemonProcess &process);
    void forward(std::chrono::milliseconds time);

private:
    void *m_shift;
};
