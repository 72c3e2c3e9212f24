// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienintent.h"

#include "binder/alienbinderparcel.h"
#include "config/apkconfig.h"

namespace {

// What stands for a part of an Intent that is not there.
constexpr qint32 absent = 0;
constexpr qint32 present = 1;
constexpr qint32 noExtras = -1;

void writeUri(AlienBinderParcel *parcel, const QUrl &uri)
{
    const QString text = uri.toString();
    if (text.isEmpty()) {
        parcel->writeInt32(absent);
        return;
    }
    parcel->writeInt32(present);
    parcel->writeString(text);
}

} // namespace

AlienIntent::AlienIntent(const QString &intentAction) : action(intentAction) { }

void AlienIntent::writeToParcel(AlienBinderParcel *parcel) const
{
    parcel->writeString(action);
    writeUri(parcel, data);
    parcel->writeString(type);
    if (ApkConfig::sdkVersion() > 28) {
        const QString identifier = QLatin1String("");
        parcel->writeString(identifier);
    }
    parcel->writeInt32(flags);
    parcel->writeString(package);
    parcel->writeString(componentPackage);
    if (!componentPackage.isEmpty())
        parcel->writeString(componentClass);
    parcel->writeInt32(absent); // source bounds
    parcel->writeStringList(categories);
    parcel->writeInt32(absent); // selector
    parcel->writeInt32(absent); // clip data
    parcel->writeInt32(contentUserHint);
    if (extras.isEmpty())
        parcel->writeInt32(noExtras);
    else
        parcel->writeBundle(extras);
}
