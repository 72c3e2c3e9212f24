// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

/// A mount namespace of the process's own, in which the paths that lumd uses are empty and
/// writable and nothing reaches the machine's files. As root a mount namespace is enough; an
/// ordinary user gets a user namespace too, in which he is uid 0.
///
/// Private and empty: /usr/share/applications, /usr/share/tovra-settings/entries,
/// /usr/share/lumd, /usr/share/translations, /etc/lumd, /opt/alien, and the whole of /run
/// with /run/systemd/{seats,users,sessions}, /run/dbus and /run/user. Absent, in a writable
/// parent: /var/lib/lumd and /home/.android. Any failure ends the process with a message.
namespace TestNamespace {

/// Enters it. Call before any thread and any QCoreApplication exists; LUM_TEST_MAIN does.
void enter();

/// Puts a script in the place of a program, which need not exist: `replaceProgram("/usr/bin/du",
/// "#!/bin/sh\necho 1\n")`. The file is executable and may be replaced again.
void replaceProgram(const QString &path, const QByteArray &script);

/// Mounts an empty tmpfs of that many KiB on `path`, which is created if need be: a disk that
/// can be filled.
void mountSmallDisk(const QString &path, int kilobytes);
/// Makes the tree at `path` read-only, or writable again; not even root can write then.
void setReadOnly(const QString &path, bool readOnly);

/// Writes the files that libsystemd reads, so that sd_seat_get_active("seat0", ...) answers
/// with a session of that user.
void setActiveSession(unsigned int uid);
/// Leaves seat0 without an active session, as at boot.
void clearActiveSession();

} // namespace TestNamespace
