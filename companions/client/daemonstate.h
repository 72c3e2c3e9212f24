// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// What lumd tells of itself and of the Android runtime.
struct DaemonState
{
    QString runtimeState; ///< systemd's word for the unit's state: "active", "inactive", "failed"
    bool isReady = false; ///< package changes are handed over to Android at once
    quint32 pendingChanges = 0; ///< installs and removals that are kept until then
    quint32 pendingLaunches = 0;
    qint32 sdkLevel = 0; ///< of Android; 0 while unknown
    QString version; ///< of lumd

    bool isRuntimeUp() const { return runtimeState == QLatin1String("active"); }
    bool operator==(const DaemonState &other) const;
};
