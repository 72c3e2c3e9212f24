// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienactivitymanager.h"

#include "clients/alienintent.h"
#include "clients/androiduser.h"
#include "clients/clientcall.h"
#include "clients/transactioncodes.h"

namespace {

// android.app.IActivityManager
constexpr TransactionCodes startActivityCodes{3, 6, 7};
constexpr TransactionCodes forceStopPackageCodes{72, 77, 68};

} // namespace

AlienActivityManager::AlienActivityManager()
    : AlienBinderConnection("activity", "android.app.IActivityManager", true, nullptr)
{
}

void AlienActivityManager::startActivity(const AlienIntent &intent)
{
    GBinderClient *const link = client();
    if (!link)
        return; // the intent would ask for the SDK level, and say so where there is none
    const QString empty = QLatin1String("");
    ClientCall call(link);
    AlienBinderParcel &parcel = call.parcel();
    parcel.writeLocalObject(nullptr); // the caller's application thread
    parcel.writeString(empty); // the calling package
    parcel.writeInt32(1); // an intent follows
    intent.writeToParcel(&parcel);
    parcel.writeString(intent.type); // the resolved type
    parcel.writeLocalObject(nullptr); // whom to give the result
    parcel.writeString(empty); // the result's id
    parcel.writeInt32(0); // request code
    parcel.writeInt32(0); // start flags
    parcel.writeInt32(0); // no profiler
    parcel.writeInt32(0); // no options
    call.transact(startActivityCodes);
}

void AlienActivityManager::forceStopPackage(const QString &packageName)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    call.parcel().writeInt32(androidUser);
    call.transact(forceStopPackageCodes);
}
