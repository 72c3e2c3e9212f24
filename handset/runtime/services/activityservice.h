// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

class AppCatalogue;
class WindowList;

/// "activity": android.app.IActivityManager.
class ActivityService : public AndroidService
{
public:
    ActivityService(int sdk, EventLog *log, AppCatalogue *apps, WindowList *windows);

private:
    Call startActivity(AndroidParcel &request);
    Call forceStopPackage(AndroidParcel &request);
    bool resolves(const QString &package) const;

    AppCatalogue *const m_apps;
    WindowList *const m_windows;
};
