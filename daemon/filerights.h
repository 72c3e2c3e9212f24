// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QVector>

#include <optional>
#include <vector>

#include <sys/types.h>

/// The ids that decide which files a process may open.
struct FileRights
{
    uid_t user;
    gid_t group;
    std::vector<gid_t> groups;

    /// Those of a user. Where @p groups is not there, the system's lists tell the user's groups;
    /// a user whom these do not know has none.
    static FileRights ofUser(uid_t user, const std::optional<QVector<uint>> &groups);
    /// Those of a user who owns nothing.
    static FileRights ofNobody();
};

/// Gives the calling thread somebody's file rights in place of its own for as long as this object
/// lives, and none of its capabilities. Other threads keep theirs. The process ends (SIGABRT) when
/// the thread cannot be given its own rights back.
class BorrowedRights
{
public:
    explicit BorrowedRights(const FileRights &rights);
    ~BorrowedRights();
    BorrowedRights(const BorrowedRights &) = delete;
    BorrowedRights &operator=(const BorrowedRights &) = delete;

    /// False when the kernel refused them: the thread has its own rights then.
    bool areInForce() const { return m_areInForce; }

private:
    static bool take(const FileRights &rights);
    void giveBack() const;

    const FileRights m_own;
    const quint64 m_capabilities;
    const int m_dumpable;
    bool m_areInForce = false;
};
