// SPDX-License-Identifier: BSD-3-Clause
#include "fuzz/setup.h"

// The level is cached for the life of a process; from within the source it can be forgotten.
#include "config/sdkversion.cpp" // NOLINT(bugprone-suspicious-include)

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Fuzz::writeFile("/opt/alien/build.prop", Fuzz::bytes(data, size));
    cachedSdkVersion = 0;
    const qint32 first = ApkConfig::sdkVersion();
    Fuzz::require(ApkConfig::sdkVersion() == first);
    return 0;
}
