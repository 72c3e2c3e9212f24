// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "launcher/apklauncher.h"
#include "tests/support/logcapture.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <sys/types.h>

/// The files of launchers as the tests of this folder write, read and compare them.
namespace LauncherFiles {

constexpr char applications[] = "/usr/share/applications/";
constexpr char icons[] = "/var/lib/lumd/";
constexpr char settings[] = "/usr/share/tovra-settings/entries/";
constexpr char partnerSpace[] = "/usr/share/lumd/partnerspace/";

/// Ends the test process with a message when the file cannot be written or read.
void write(const QString &path, const QByteArray &bytes);
QByteArray read(const QString &path);
/// Makes the directory with all above it.
void makeDirectory(const QString &path);

/// The names in a directory, hidden ones and dangling links too, sorted by code unit.
QStringList listing(const QString &directory);
inline QStringList listing(const char *directory)
{
    return listing(QString::fromLatin1(directory));
}

/// The paths of all entries, icons and settings entries, in that order.
QStringList allFiles();
/// What allFiles() gives when there are those of one launcher alone.
QStringList filesOf(const ApkLauncher &launcher);

/// Tells whether a file has been written or replaced between two looks at it.
struct Stamp
{
    ino_t inode = 0;
    qint64 modified = 0; ///< nanoseconds
};
bool operator==(const Stamp &a, const Stamp &b);
/// All 0 when there is no such file.
Stamp stamp(const QString &path);

/// The permission bits of a file, as in chmod; 0 when there is no such file.
unsigned int mode(const QString &path);

/// Fills the disk below `directory` with the one file "filler".
void fillDisk(const QString &directory);

/// A launcher with the caption "Caption", the icon "icon" and the version "1".
ApkLauncher launcher(const char *packageName, const char *className = "Main");
/// The desktop entry of a new launcher below the default data root, with further keys.
QByteArray entryText(const ApkLauncher &launcher, const QMap<QString, QString> &further = {});
/// Writes an entry of that package as a former run would have left it, with icon and settings
/// entry, and gives its path.
QString leaveBehind(const ApkLauncher &launcher);

/// "lumd_launcher_..." without directory and suffix, for names that need no escape but that
/// of the dots.
QString baseName(const ApkLauncher &launcher);
QString desktopPath(const ApkLauncher &launcher);
QString iconPath(const ApkLauncher &launcher);
QString settingsPath(const ApkLauncher &launcher);

/// "LEVEL com.tovra.lumd.launcher TEXT"
QString logLine(const char *level, const QString &text);

/// The line of these words and a path, such as: Could not remove: "/a"
QString pathLine(const char *level, const char *words, const QString &path);

/// All lines of an announcement that leaves the entry as it is, and of one that rewrites it.
QStringList announcedLines(const ApkLauncher &launcher);
QStringList rewrittenLines(const ApkLauncher &launcher);

/// The lines that a failure to write each of the files leaves.
QString iconFailure(const ApkLauncher &launcher);
QString settingFailure(const ApkLauncher &launcher);
QString openFailure(const ApkLauncher &launcher);

/// The lines above the level of debug.
QStringList warnings(const LogCapture &log);

} // namespace LauncherFiles
