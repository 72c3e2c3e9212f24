// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QUrl>

/// The places that the daemon shares with the Android runtime.
enum SymbolicPath : int {
    DataRoot = 1, ///< the data root as configured
    AppDir = 2, ///< where the runtime keeps installed apps
    IncomingDir = 3, ///< where apk files are staged to be installed
    PackagedDir = 4, ///< where apk files that RPM packages deliver are held
    AppDataDir = 5, ///< data of the apps, one folder a package
};

/// The data root and all that follows from it. A small value: copies are independent.
class ApkConfig
{
public:
    /// Takes the data root from the environment variable ANDROID_DATA_ROOT when it is set,
    /// also to an empty string, and "/home/.android" otherwise.
    ApkConfig();

    /// The path for @p which. All but DataRoot end in a slash. A null string, with a
    /// warning, for a value that is not one of SymbolicPath.
    QString path(SymbolicPath which) const;

    /// The name under which the runtime sees the host file @p path, which is a path or a
    /// "file:" URL. A path that the runtime does not mount comes back unchanged.
    static QString runtimePath(const QString &path);

    /// The same as a URL. A URL of a scheme other than "file" passes through.
    static QUrl runtimeUrl(const QString &path);

    /// The Android SDK level of the installed runtime ("ro.build.version.sdk"), or 0, with a
    /// critical message, when it cannot be found. Read from disk until it is known, then
    /// fixed for the life of the process.
    static qint32 sdkVersion();

    /// The same for whom it is no trouble that it cannot be found: says nothing, and what is
    /// read here is not fixed.
    static qint32 knownSdkVersion();

private:
    QString m_dataRoot;
};
