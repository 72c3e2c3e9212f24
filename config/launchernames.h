// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

class QDir;

/// The part of a launcher's file name that tells it from all others. Both names are
/// escaped, so that "a.b" and "a_b" stay apart.
QString escapeLauncherName(const QString &packageName, const QString &className);

/// Whether @p path is an apk: a file name ending in ".apk" in any case, or a directory
/// that holds a "base.apk".
bool isApkPath(const QString &path);

/// The icon that belongs to the desktop entry @p desktopPath.
QString iconPathFor(const QString &desktopPath);

/// The settings entry that belongs to the desktop entry @p desktopPath.
QString settingsEntryPathFor(const QString &desktopPath);

/// The path in @p dir of the entry @p name, which holds no slash. (QDir::filePath() would take one
/// that begins with a colon for a resource of the program.)
QString pathInFolder(const QDir &dir, const QString &name);

/// The path in @p dir of the apk named by @p apkPath, less the number that packaged apk
/// files carry: "foo-12.apk" gives "foo.apk".
QString unversionedApkPath(const QDir &dir, const QString &apkPath);

/// Whether unversionedApkPath() exists.
bool unversionedApkExists(const QDir &dir, const QString &apkPath);
