// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>

class AndroidParcel;

/// Reads an android.os.Bundle.
///
/// Each key holds an object of "type" and "value"; a long's value is text, for JSON's numbers
/// have no 64 bits. A length that is not that of the entries, a key given twice and a value
/// of a type that is not read here are failures of the parcel.
/// @return JSON's null for a null Bundle.
QJsonValue readAndroidBundle(AndroidParcel &parcel);
