// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

class AppCatalogue;
class PackageInstaller;

/// "package": android.content.pm.IPackageManager.
class PackageService : public AndroidService
{
public:
    PackageService(int sdk, EventLog *log, AppCatalogue *apps, PackageInstaller *installer);

private:
    Call installPackage(AndroidParcel &request);
    Call deletePackage(AndroidParcel &request);
    Call deleteApplicationCacheFiles(AndroidParcel &request);
    Call clearApplicationUserData(AndroidParcel &request);
    Call getPackageUid(AndroidParcel &request);

    AppCatalogue *const m_apps;
    PackageInstaller *const m_installer;
};
