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
        [this, package](GBinderWriter *writer) {
            const AndroidApp app = m_apps->app(package);
            writeNoException(writer);
            gbinder_writer_append_int32(writer, 1); // a result follows
            gbinder_writer_append_int64(writer, quint64(app.codeBytes));
            gbinder_writer_append_int64(writer, quint64(app.dataBytes));
            gbinder_writer_append_int64(writer, quint64(app.cacheBytes));
        }};
}
