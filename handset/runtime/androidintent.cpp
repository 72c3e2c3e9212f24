// SPDX-License-Identifier: BSD-3-Clause
#include "androidintent.h"

#include "androidbundle.h"
#include "androidparcel.h"
#include "nullabletext.h"

#include <QJsonArray>

namespace {

constexpr int FirstSdkWithIdentifier = 29;

// android.net.Uri: NULL_TYPE_ID, and the type of StringUri
enum UriType : qint32 { NoUri = 0, StringUri = 1 };

QJsonValue readUri(AndroidParcel &parcel)
{
    const qint32 type = parcel.readInt32();
    if (type == NoUri)
        return {};
    if (type != StringUri)
        parcel.fail(QStringLiteral("Uri of type %1").arg(type));
    const QString text = parcel.readString16();
    if (text.isEmpty())
        parcel.fail(QStringLiteral("Uri without a text"));
    return nullableText(text);
}

QJsonArray readCategories(AndroidParcel &parcel)
{
    const qint32 count = parcel.readInt32();
    if (count < 0)
        parcel.fail(QStringLiteral("%1 categories").arg(count));
    QJsonArray categories;
    for (qint32 i = 0; parcel.ok() && i < count; ++i)
        categories.append(nullableText(parcel.readString16()));
    return categories;
}

void readAbsent(AndroidParcel &parcel, const char *what)
{
    if (parcel.readInt32() != 0)
        parcel.fail(QStringLiteral("Intent with %1").arg(QLatin1String(what)));
}

} // namespace

AndroidIntent AndroidIntent::read(AndroidParcel &parcel, int sdk)
{
    AndroidIntent intent;
    QJsonObject &record = intent.record;
    record.insert(QStringLiteral("action"), nullableText(parcel.readString16()));
    record.insert(QStringLiteral("data"), readUri(parcel));
    record.insert(QStringLiteral("type"), nullableText(parcel.readString16()));
    if (sdk >= FirstSdkWithIdentifier)
        record.insert(QStringLiteral("identifier"), nullableText(parcel.readString16()));
    record.insert(QStringLiteral("flags"), parcel.readInt32());
    intent.package = parcel.readString16();
    record.insert(QStringLiteral("package"), nullableText(intent.package));

    const QString componentPackage = parcel.readString16();
    QJsonValue component;
    if (!componentPackage.isNull()) {
        component = QJsonObject{{QStringLiteral("package"), componentPackage},
            {QStringLiteral("class"), nullableText(parcel.readString16())}};
    }
    record.insert(QStringLiteral("component"), component);
    readAbsent(parcel, "source bounds");
    record.insert(QStringLiteral("categories"), readCategories(parcel));
    readAbsent(parcel, "a selector");
    readAbsent(parcel, "clip data");
    record.insert(QStringLiteral("contentUserHint"), parcel.readInt32());
    const AndroidBundle extras = AndroidBundle::read(parcel);
    record.insert(QStringLiteral("extras"), extras.content);
    intent.damage = extras.damage;
    if (intent.package.isNull())
        intent.package = componentPackage;
    return intent;
}
