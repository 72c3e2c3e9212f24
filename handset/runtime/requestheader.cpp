// SPDX-License-Identifier: BSD-3-Clause
#include "requestheader.h"

#include "androidparcel.h"
#include "androidparcelwriter.h"

namespace {

constexpr int FirstSdkWithWorkSource = 29;

// IPCThreadState::kUnsetWorkSource of frameworks/native, Android 10
constexpr qint32 UnsetWorkSource = -1;

// STRICT_MODE_PENALTY_GATHER of Parcel.cpp in frameworks/native; Android 10 moved it
qint32 penaltyGather(int sdk)
{
    return sdk >= 29 ? qint32(1U << 31) : 0x40 << 16;
}

} // namespace

RequestHeader RequestHeader::read(AndroidParcel &parcel, int sdk, const QString &expectedInterface)
{
    RequestHeader header;
    header.strictMode = parcel.readInt32();
    if (sdk >= FirstSdkWithWorkSource)
        parcel.readInt32();
    header.interface = parcel.readString16();
    if (header.interface != expectedInterface)
        parcel.fail(QStringLiteral("interface is \"%1\"").arg(header.interface));
    return header;
}

QByteArray RequestHeader::toParcel(int sdk, const QString &interface)
{
    AndroidParcelWriter writer;
    writer.writeInt32(penaltyGather(sdk));
    if (sdk >= FirstSdkWithWorkSource)
        writer.writeInt32(UnsetWorkSource);
    writer.writeString16(interface);
    return writer.bytes();
}
