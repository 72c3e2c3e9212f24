// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "daemon/filerights.h"

#include <QString>
#include <QVector>

#include <optional>

class QDBusMessage;

/// What the bus daemon knows of a connection: the process that opened it, as it was then.
struct BusCredentials
{
    uint user = 0;
    /// All groups of the process; bus daemons that are old do not tell them.
    std::optional<QVector<uint>> groups;

    /// Reads the answer to GetConnectionCredentials; gives nothing when it tells no user.
    static std::optional<BusCredentials> fromReply(const QDBusMessage &reply);
};

/// The owner of a process's folder under /proc: its effective user and group of this moment. For
/// a process that is gone the names are empty.
struct ProcessOwner
{
    uint user = 0;
    uint group = 0;
    QString userName;
    QString groupName;

    static ProcessOwner ofProcess(uint processId);
};

/// The process that made a bus call. Neither view of it is to be trusted alone: the process may
/// have executed another program since, or its number may be another's by now.
struct Caller
{
    ProcessOwner process;
    std::optional<BusCredentials> credentials;

    /// Whether it may do everything, by both views.
    bool isPrivileged() const;
    /// The rights that its files are opened with; nothing where these are lumd's own.
    std::optional<FileRights> fileRights() const;
};
