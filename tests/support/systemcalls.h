// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

/// What this process, and every program that it starts from now on, can do in the kernel.
namespace SystemCalls {

/// From now on these system calls (SYS_chmod) do nothing and fail with that error number.
/// Cannot be undone; a failure ends the process with a message.
void refuse(const std::vector<long> &numbers, int error);

/// By the C library's function, whatever system call the machine has for it.
std::vector<long> ofChmod();
std::vector<long> ofChown();
std::vector<long> ofFork();

/// Whether processes can run as that user here. An ordinary user's namespace has but one.
bool hasUser(unsigned int uid);

} // namespace SystemCalls
