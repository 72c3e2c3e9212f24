// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

/// What libFuzzer calls once, before the first input: enters the private namespace of the
/// tests, so that the daemon's paths are a tmpfs, and silences the log.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

/// What a fuzz target defines; libFuzzer calls it for each input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace Fuzz {

QByteArray bytes(const std::uint8_t *data, std::size_t size);

/// Puts the bytes into a file, whose folder exists.
void writeFile(const char *path, const QByteArray &contents);

/// Ends the process, as a crash does, unless the claim is true.
void require(bool claim);

} // namespace Fuzz
