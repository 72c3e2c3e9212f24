// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// While it lives, the time of this process stands still, and leaps ahead to the next timer
/// whenever the main thread's event loop has nothing to do: waits take no time and come out to
/// the millisecond. A condition must be waited for in an event loop (QSignalSpy::wait), since
/// nothing else makes the time go on. Only in an executable that has the source of this class
/// among its own: its clock_gettime and poll go before those of libc.
class LeapingClock
{
public:
    LeapingClock();
    ~LeapingClock();
};
