// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// The runtime's settings, as they stand when it starts; README.md tells of each.
struct RuntimeConfig
{
    int sdk = 0; ///< 0 when the build properties name none
    int readyDelay = 2200; ///< milliseconds
    int stopDelay = 0; ///< milliseconds
    int announceDelay = 0; ///< milliseconds
    bool announceBackwards = false;
    bool announceOneway = false;
    int installAnswer = 1;
    int installDelay = 0; ///< milliseconds
    int clearDelay = 300; ///< milliseconds
    int windowPolls = 0;

    /// Reads /etc/alien-runtime.conf and /opt/alien/build.prop; what is not there has its
    /// default.
    static RuntimeConfig load();
};
