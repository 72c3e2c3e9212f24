// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

class AndroidParcel;

/// What stands in front of the arguments of every binder request of Android's.
struct RequestHeader
{
    qint32 strictMode = 0;
    QString interface;

    /// Reads the header in the layout of the given SDK level (27 to 29). Another interface is a
    /// failure of the parcel; any strict mode and any work source are right.
    static RequestHeader read(AndroidParcel &parcel, int sdk, const QString &expectedInterface);
    /// The header of a request that Android makes itself.
    static QByteArray toParcel(int sdk, const QString &interface);
};
