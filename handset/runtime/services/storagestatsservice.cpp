// SPDX-License-Identifier: BSD-3-Clause
#include "services/storagestatsservice.h"

#include "appcatalogue.h"

StorageStatsService::StorageStatsService(int sdk, EventLog *log, AppCatalogue *apps)
    : AndroidService(QStringLiteral("storagestats"),
          QStringLiteral("android.app.usage.IStorageStatsManager"), sdk, log),
      m_apps(apps)
{
    add("queryStatsForPackage", {6, 7, 7},
        [this](AndroidParcel &request) { return queryStatsForPackage(request); });
}

AndroidService::Call StorageStatsService::queryStatsForPackage(AndroidParcel &request)
{
    const QString volume = request.readString16();
    const QString package = request.readString16();
    readUser(request);
    const QString callingPackage = request.readString16();
    return {{{QStringLiteral("volume"), describe(volume)},
                {QStringLiteral("package"), describe(package)},
                {QStringLiteral("callingPackage"), describe(callingPackage)}},
        [this, package](AndroidReply &reply) {
            if (!m_apps->contains(package)) {
                reply.writeException(AndroidException::parcelable(
                    QStringLiteral("android.content.pm.PackageManager$NameNotFoundException"),
                    package));
                return;
            }
            const AndroidApp app = m_apps->app(package);
            reply.writeNoException();
            reply.writeInt32(1); // a result follows
            reply.writeInt64(app.codeBytes);
            reply.writeInt64(app.dataBytes);
            reply.writeInt64(app.cacheBytes);
        }};
}
