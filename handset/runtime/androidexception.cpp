// SPDX-License-Identifier: BSD-3-Clause
#include "androidexception.h"

#include "androidparcelwriter.h"

namespace {

constexpr int FirstSdkWithStackTrace = 28;

/// The bytes behind a word that counts them and itself.
QByteArray sized(const QByteArray &bytes)
{
    AndroidParcelWriter writer;
    writer.writeInt32(bytes.size() + int(sizeof(qint32)));
    writer.append(bytes);
    return writer.bytes();
}

} // namespace

AndroidException AndroidException::of(qint32 code, const QString &message)
{
    if (code == Parcelable)
        return parcelable(QStringLiteral("java.lang.RuntimeException"), message);
    AndroidParcelWriter detail;
    if (code == ServiceSpecific)
        detail.writeInt32(0);
    return {code, message, detail.bytes()};
}

AndroidException AndroidException::parcelable(const QString &className, const QString &message)
{
    AndroidParcelWriter writer;
    writer.writeString16(QStringLiteral("android.os.ParcelableException"));
    writer.writeString16(className);
    writer.writeString16(message);
    // java.lang.Throwable.toString of the cause
    const QString text =
        message.isNull() ? className : QStringLiteral("%1: %2").arg(className, message);
    return {Parcelable, text, sized(writer.bytes())};
}

QByteArray AndroidException::toParcel(int sdk, const QString &stackTrace) const
{
    AndroidParcelWriter writer;
    writer.writeInt32(code);
    writer.writeString16(message);
    if (sdk >= FirstSdkWithStackTrace && stackTrace.isNull()) {
        writer.writeInt32(0);
    } else if (sdk >= FirstSdkWithStackTrace) {
        AndroidParcelWriter trace;
        trace.writeString16(stackTrace);
        writer.append(sized(trace.bytes()));
    }
    writer.append(detail);
    return writer.bytes();
}
