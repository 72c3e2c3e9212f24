// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

class AppCatalogue;

/// "storagestats": android.app.usage.IStorageStatsManager.
class StorageStatsService : public AndroidService
{
public:
    StorageStatsService(int sdk, EventLog *log, AppCatalogue *apps);

private:
    Call queryStatsForPackage(AndroidParcel &request);

    AppCatalogue *const m_apps;
};
