// SPDX-License-Identifier: BSD-3-Clause
#include "clients/aliendeviceidle.h"

#include "binder/logging.h"
#include "clients/clientcall.h"
#include "clients/transactioncodes.h"

namespace {

// android.os.IDeviceIdleController
constexpr quint32 addPowerSaveWhitelistAppCode = 1;
constexpr quint32 removePowerSaveWhitelistAppCode = 2;
constexpr TransactionCodes isPowerSaveWhitelistAppCodes{13, 16, 16};

} // namespace

AlienDeviceIdle::AlienDeviceIdle()
    : AlienBinderConnection("deviceidle", "android.os.IDeviceIdleController", false, nullptr)
{
}

void AlienDeviceIdle::setWhitelisted(const QString &packageName, bool allowed)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    call.transact(allowed ? addPowerSaveWhitelistAppCode : removePowerSaveWhitelistAppCode);
    if (call.status() != 0)
        qCCritical(binderLog) << "PowerSaveWhitelist setting for" << packageName << "failed";
}

bool AlienDeviceIdle::isWhitelisted(const QString &packageName)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    GBinderRemoteReply *const reply = call.transact(isPowerSaveWhitelistAppCodes);
    gint32 status = call.status();
    gint32 result = 0;
    if (reply && status == 0) {
        GBinderReader reader;
        gbinder_remote_reply_init_reader(reply, &reader);
        gbinder_reader_read_int32(&reader, &status); // the exception word
        gbinder_reader_read_int32(&reader, &result);
    }
    if (status != 0)
        qCCritical(binderLog) << "PowerSaveWhitelist check for" << packageName << "failed";
    return result == 1;
}
