// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QString>

class AndroidParcel;

/// An android.os.Bundle as it arrived.
struct AndroidBundle
{
    /// Each key holds an object of "type" and "value"; a long's value is text, for JSON's
    /// numbers have no 64 bits. JSON's null for a null Bundle; of a damaged one, the entries
    /// before the damage.
    QJsonValue content;
    /// What is wrong with the entries: a key given twice, a value of a type that is not read
    /// here, a length that is not theirs. Android, which unpacks them only when somebody asks,
    /// passes over that; null for nothing.
    QString damage;

    /// A length that does not fit and another magic are failures of the parcel.
    static AndroidBundle read(AndroidParcel &parcel);
};
