// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusArgument>
#include <QMetaType>

/// How much storage an Android app takes up. Travels over D-Bus as (xxx), in this order.
struct AppSizeInfo
{
    qint64 codeBytes = 0;
    qint64 dataBytes = 0;
    qint64 cacheBytes = 0;

    /// Makes the type known to Qt's meta-type system and to Qt D-Bus, as "AppSizeInfo".
    static void registerMetaType();
};

Q_DECLARE_METATYPE(AppSizeInfo)

QDBusArgument &operator<<(QDBusArgument &argument, const AppSizeInfo &info);
const QDBusArgument &operator>>(const QDBusArgument &argument, AppSizeInfo &info);
