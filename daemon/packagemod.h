// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Where an install request comes from.
enum PackageSource : unsigned {
    SourceDefault = 0, ///< a user, or the package that delivers the apk
    SourcePreload = 1, ///< an apk that comes with the device
    SourcePartnerSpace = 2, ///< an app that the home screen shows in the partner space
};

/// One request for the runtime's package manager.
struct PackageMod
{
    /// To install: the apk, as the runtime sees it. To uninstall: the package name.
    QString filename;
    bool install = false;
    /// No result is reported to the user.
    bool silent = false;
};
