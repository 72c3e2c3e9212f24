// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QStringList>

/// A process as /proc shows it, by the names of its user and group. Where the test's namespace has
/// but one user these are other names of it; elsewhere the process runs under ids of these names.
struct Identity
{
    QString owner;
    QString group;
};

/// Neither root nor of a group that lumd knows.
Identity ordinary();

/// The name of a manner of calling: see caller.cpp.
QString plain();

/// The manner of a process that becomes another behind its connection, as one does that executes
/// `su`. In a namespace with but one user it stays who it is.
QString becoming(const Identity &later);

/// Puts files of the namespace in the place of the system's lists of users and groups; once,
/// before the first call.
void replaceUsersAndGroups();

/// Calls a method of the daemon from a process of that identity; gives what caller.cpp prints.
QString callAs(const Identity &identity, const QString &manner, const QString &method,
    const QStringList &arguments);
