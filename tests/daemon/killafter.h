// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <thread>

/// Kills a process amid what it writes to the folders of the launchers' files, whose every change
/// it counts.
class KillAfter
{
public:
    /// SIGKILL comes `microseconds` after that many changes (files made, written, closed, moved,
    /// removed).
    KillAfter(int processId, int changes, int microseconds);
    /// Kills it at the latest.
    ~KillAfter();
    KillAfter(const KillAfter &) = delete;
    KillAfter &operator=(const KillAfter &) = delete;

private:
    void watch(int changes) const;

    int m_processId;
    int m_watch;
    int m_end; ///< readable when nothing more is to be waited for
    std::thread m_thread;
};
