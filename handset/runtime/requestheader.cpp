// SPDX-License-Identifier: BSD-3-Clause
#include "requestheader.h"

#include "androidparcel.h"

namespace {

// STRICT_MODE_PENALTY_GATHER of Parcel.cpp in frameworks/native: what a native program that
// follows no policy of its own sends
constexpr qint32 NoPolicy = 0x40 << 16;

// IPCThreadState::kUnsetWorkSource of frameworks/native, Android 10
constexpr qint32 UnsetWorkSource = -1;
constexpr int FirstSdkWithWorkSource = 29;

} // namespace

RequestHeader RequestHeader::read(AndroidParcel &parcel, int sdk, const QString &expectedInterface)
{
    RequestHeader header;
    header.strictMode = parcel.readInt32();
    if (header.strictMode != NoPolicy) {
        parcel.fail(QStringLiteral("strict mode word is 0x%1")
                        .arg(quint32(header.strictMode), 8, 16, QLatin1Char('0')));
    }
    if (sdk >= FirstSdkWithWorkSource) {
        const qint32 workSource = parcel.readInt32();
        if (workSource != UnsetWorkSource)
            parcel.fail(QStringLiteral("work source is %1").arg(workSource));
    }
    header.interface = parcel.readString16();
    if (header.interface != expectedInterface)
        parcel.fail(QStringLiteral("interface is \"%1\"").arg(header.interface));
    return header;
}
