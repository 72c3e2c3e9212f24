// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>

/// Moves the monotonic clock of this process on. Timers that are due then fire in the event
/// loop; what sleeps in the kernel has to be woken to notice. For another process see
/// shiftedclock.h.
void shiftClock(std::chrono::milliseconds time);

/// While it lives, the monotonic clock of this process moves by shiftClock() alone, and with it
/// all of Qt's timers, however long the machine takes. One at a time, of the main thread.
///
/// QTest::qWait() and the QTRY macros wait for the clock: use QTest::qWaitFor(). So that its
/// deadlines still end a test that hangs, the clock goes on by itself after 20 seconds. Moved by
/// five minutes in all, it makes Qt Test end the test function.
class StoppedClock
{
public:
    StoppedClock();
    ~StoppedClock();
    StoppedClock(const StoppedClock &) = delete;
    StoppedClock &operator=(const StoppedClock &) = delete;
};
