// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// The contents of the regular file at @p path, by the fewest system calls. Nothing when it
/// cannot be read or is of another kind, and then without waiting: a FIFO, a socket, a device.
std::optional<QByteArray> readFile(const QString &path);

/// Whether there is anything at @p path, behind all links. It holds no zero character.
bool fileExists(const QString &path);

/// The paths in @p folder, which ends in a slash, of the names that begin with @p prefix and
/// end with @p suffix, all without regard to case: what QDir::entryList() gives for that
/// pattern, without its file information and regular expression for each name. Sorted by the
/// lower-case name; dangling links, devices and names that are not text are left out.
QStringList listFiles(QLatin1String folder, QLatin1String prefix, QLatin1String suffix);

/// Whether the file at @p path holds anything but @p bytes. True when it cannot be read.
bool fileDiffers(const QString &path, const QByteArray &bytes);

/// Replaces the file at @p path by @p bytes in one step: readers see the old contents or the
/// new, never a part. False when that failed, and for no bytes at all; the old file then
/// stays.
bool writeFile(const QString &path, const QByteArray &bytes);

/// Removes the file at @p path. A failure is logged, and gives false.
bool removeFile(const QString &path);
