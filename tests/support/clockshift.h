// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>

/// Sets the monotonic clock of this process ahead. For executables that clockshift.cpp is
/// linked into; for another process see shiftedclock.h.
void shiftClock(std::chrono::milliseconds time);
