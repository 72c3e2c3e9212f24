// SPDX-License-Identifier: BSD-3-Clause
#include "client/daemonstate.h"

bool DaemonState::operator==(const DaemonState &other) const
{
    return runtimeState == other.runtimeState && isReady == other.isReady
        && pendingChanges == other.pendingChanges && pendingLaunches == other.pendingLaunches
        && sdkLevel == other.sdkLevel && version == other.version;
}
