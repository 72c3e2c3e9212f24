// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"
#include "clients/appsizeinfo.h"

/// Client of Android's storage statistics. The link is opened for a query and dropped soon
/// after.
class AlienStorageStatsManager : public AlienBinderConnection
{
    Q_OBJECT

public:
    AlienStorageStatsManager();

    /// How much storage @p packageName takes up on the volume @p volumeUuid (null for the
    /// internal one) for the Android user @p userId. All zeros without a link; all -1, after
    /// a critical message, when the call failed, and without one for no reply. An exception is
    /// read as if it were an answer.
    AppSizeInfo queryStatsForPackage(
        const QString &packageName, const QString &volumeUuid, qint32 userId);
};
