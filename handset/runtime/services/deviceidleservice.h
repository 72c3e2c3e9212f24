// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

class AppCatalogue;

/// "deviceidle": android.os.IDeviceIdleController, which holds the power-save whitelist.
class DeviceIdleService : public AndroidService
{
public:
    DeviceIdleService(int sdk, EventLog *log, AppCatalogue *apps);

private:
    Call setWhitelisted(AndroidParcel &request, bool whitelisted);
    Call isWhitelisted(AndroidParcel &request);

    AppCatalogue *const m_apps;
};
