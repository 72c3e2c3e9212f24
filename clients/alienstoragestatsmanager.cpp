// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienstoragestatsmanager.h"

#include "binder/logging.h"
#include "clients/clientcall.h"
#include "clients/transactioncodes.h"

namespace {

// android.app.usage.IStorageStatsManager
constexpr TransactionCodes queryStatsForPackageCodes{6, 7, 7};

qint64 readSize(AlienBinderParcel &parcel, const char *label)
{
    const qint64 size = parcel.readInt64();
    qCDebug(binderLog) << label << size;
    return size;
}

AppSizeInfo readStats(GBinderRemoteReply *reply)
{
    AppSizeInfo info;
    GBinderReader reader{};
    if (reply)
        gbinder_remote_reply_init_reader(reply, &reader);
    AlienBinderParcel parcel(reply ? &reader : nullptr);
    qCDebug(binderLog) << "Got package stats"
                       << (reply ? gbinder_reader_bytes_remaining(&reader) : 0) << "bytes";
    // The exception word and the word that says that a result follows, as one number.
    const auto status = static_cast<long>(parcel.readInt64());
    qCDebug(binderLog) << "Status:" << status;
    info.codeBytes = readSize(parcel, "Code: ");
    info.dataBytes = readSize(parcel, "Data: ");
    info.cacheBytes = readSize(parcel, "Cache: ");
    return info;
}

} // namespace

AlienStorageStatsManager::AlienStorageStatsManager()
    : AlienBinderConnection(
          "storagestats", "android.app.usage.IStorageStatsManager", false, nullptr)
{
}

AppSizeInfo AlienStorageStatsManager::queryStatsForPackage(
    const QString &packageName, const QString &volumeUuid, qint32 userId)
{
    qCDebug(binderLog) << "Requesting package stats";
    GBinderClient *const link = client();
    if (!link)
        return {}; // nothing was answered, not an answer that lacks its figures
    ClientCall call(link);
    call.parcel().writeString(volumeUuid);
    call.parcel().writeString(packageName);
    call.parcel().writeInt32(userId);
    const QString noCallingPackage;
    call.parcel().writeString(noCallingPackage);
    GBinderRemoteReply *const reply = call.transact(queryStatsForPackageCodes);
    if (call.status() != 0)
        qCCritical(binderLog) << "Error requesting package stats:" << call.status();
    return readStats(reply);
}
