// SPDX-License-Identifier: BSD-3-Clause
#include "androidbundle.h"

#include "androidparcel.h"
#include "nullabletext.h"

#include <QJsonArray>

namespace {

// android.os.BaseBundle: BUNDLE_MAGIC, the letters "BNDL"
constexpr qint32 Magic = 0x4C444E42;

// android.os.Parcel, VAL_...; those of them that are read here
enum ValueType : qint32 {
    Null = -1,
    String = 0,
    Integer = 1,
    Long = 6,
    Double = 8,
    Boolean = 9,
    StringArray = 14
};

QJsonObject value(const char *type, const QJsonValue &content)
{
    return {{QStringLiteral("type"), QLatin1String(type)}, {QStringLiteral("value"), content}};
}

QJsonArray readStrings(AndroidParcel &parcel)
{
    const qint32 count = parcel.readInt32();
    if (count < 0)
        parcel.fail(QStringLiteral("string array of length %1").arg(count));
    QJsonArray strings;
    for (qint32 i = 0; parcel.ok() && i < count; ++i)
        strings.append(nullableText(parcel.readString16()));
    return strings;
}

QJsonObject readValue(AndroidParcel &parcel)
{
    const qint32 type = parcel.readInt32();
    switch (type) {
    case Null:
        return value("null", {});
    case String:
        return value("string", nullableText(parcel.readString16()));
    case Integer:
        return value("int", parcel.readInt32());
    case Long:
        return value("long", QString::number(parcel.readInt64()));
    case Double:
        return value("double", parcel.readDouble());
    case Boolean:
        return value("boolean", parcel.readBool());
    case StringArray:
        return value("string array", readStrings(parcel));
    default:
        parcel.fail(QStringLiteral("value of type %1").arg(type));
        return {};
    }
}

QJsonObject readEntries(AndroidParcel &parcel)
{
    QJsonObject entries;
    const qint32 count = parcel.readInt32();
    if (count < 0)
        parcel.fail(QStringLiteral("Bundle of %1 entries").arg(count));
    for (qint32 i = 0; parcel.ok() && i < count; ++i) {
        const QString key = parcel.readString16();
        if (key.isNull() || entries.contains(key))
            parcel.fail(QStringLiteral("Bundle's key \"%1\" is null or not its first").arg(key));
        const QJsonObject content = readValue(parcel);
        if (parcel.ok())
            entries.insert(key, content);
    }
    parcel.finish();
    return entries;
}

} // namespace

AndroidBundle AndroidBundle::read(AndroidParcel &parcel)
{
    const qint32 length = parcel.readInt32();
    // any length below 0 is a null Bundle to Android
    if (!parcel.ok() || length < 0)
        return {};
    // Android writes an empty Bundle as this one word
    if (length == 0)
        return {QJsonObject(), {}};
    const qint32 magic = parcel.readInt32();
    if (magic != Magic) {
        parcel.fail(
            QStringLiteral("Bundle's magic is 0x%1").arg(quint32(magic), 8, 16, QLatin1Char('0')));
    }
    AndroidParcel entries = parcel.readParcel(length);
    if (!parcel.ok())
        return {};
    const QJsonObject content = readEntries(entries);
    return {content, entries.error()};
}
