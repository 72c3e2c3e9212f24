// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

class AndroidParcel;

/// What stands in front of the arguments of every binder request of Android's.
struct RequestHeader
{
    qint32 strictMode = 0;
    QString interface;

    /// Reads the header in the layout of the given SDK level (27 to 29) and checks it as the
    /// addressed interface would. A header that is not right is a failure of the parcel.
    static RequestHeader read(AndroidParcel &parcel, int sdk, const QString &expectedInterface);
};
