// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QString>

class AndroidParcel;

/// An android.content.Intent as it arrived.
struct AndroidIntent
{
    QJsonObject record; ///< every field, for the event log
    QString package; ///< whom it is for: its package, else its component's; null for neither
    QString damage; ///< what is wrong with its extras, which Android passes over; null for nothing

    /// Reads an Intent in the layout of the given SDK level (27 to 29). Source bounds, a
    /// selector and clip data are failures of the parcel: nobody here sends them.
    static AndroidIntent read(AndroidParcel &parcel, int sdk);
};
