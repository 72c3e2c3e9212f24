// SPDX-License-Identifier: BSD-3-Clause
#include "services/deviceidleservice.h"

#include "appcatalogue.h"

DeviceIdleService::DeviceIdleService(int sdk, EventLog *log, AppCatalogue *apps)
    : AndroidService(QStringLiteral("deviceidle"),
          QStringLiteral("android.os.IDeviceIdleController"), sdk, log),
      m_apps(apps)
{
    add("addPowerSaveWhitelistApp", {1, 1, 1},
        [this](AndroidParcel &request) { return setWhitelisted(request, true); });
    add("removePowerSaveWhitelistApp", {2, 2, 2},
        [this](AndroidParcel &request) { return setWhitelisted(request, false); });
    add("isPowerSaveWhitelistApp", {13, 16, 16},
        [this](AndroidParcel &request) { return isWhitelisted(request); });
}

AndroidService::Call DeviceIdleService::setWhitelisted(AndroidParcel &request, bool whitelisted)
{
    const QString package = request.readString16();
    return {{{QStringLiteral("package"), describe(package)}},
        [this, package, whitelisted](AndroidReply &reply) {
            m_apps->change(package,
                [whitelisted](AndroidApp &app) { app.powerSaveWhitelisted = whitelisted; });
            reply.writeNoException();
        }};
}

AndroidService::Call DeviceIdleService::isWhitelisted(AndroidParcel &request)
{
    const QString package = request.readString16();
    return {{{QStringLiteral("package"), describe(package)}}, [this, package](AndroidReply &reply) {
                reply.writeNoException();
                reply.writeInt32(m_apps->app(package).powerSaveWhitelisted ? 1 : 0);
            }};
}
