// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/ownclock.h"

/// A stopped clock that leaps ahead to the next timer whenever the main thread's event loop has
/// nothing to do: waits take no time and come out to the millisecond. A condition must be waited
/// for in an event loop (QSignalSpy::wait), since nothing else makes the time go on.
class LeapingClock
{
public:
    LeapingClock();
    ~LeapingClock();
    LeapingClock(const LeapingClock &) = delete;
    LeapingClock &operator=(const LeapingClock &) = delete;

private:
    StoppedClock m_clock;
};
