// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

#include <optional>

#include <sys/types.h>

/// Blocks, outside any event loop, until the seat "seat0" has an active session, and gives
/// the id of its user. Nothing, with a warning, when the seat cannot be watched.
std::optional<uid_t> waitForActiveSeat();

/// The timeout for poll(2), in milliseconds, up to the moment @p deadline. Both times are
/// microseconds on the monotonic clock; a deadline of UINT64_MAX, for none, gives -1.
int pollTimeout(quint64 deadline, quint64 now);
