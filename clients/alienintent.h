// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

class AlienBinderParcel;

/// An android.content.Intent, with the fields that the daemon fills. A null string is
/// Android's null.
struct AlienIntent
{
    explicit AlienIntent(const QString &intentAction);

    QString action;
    QUrl data;
    QString type; ///< the MIME type
    QString package; ///< the one package that may answer
    QString componentPackage; ///< null unless there is a component
    QString componentClass;
    qint32 flags = 0; ///< Intent.FLAG_ACTIVITY_ values
    QStringList categories;
    QVariantMap extras;
    qint32 contentUserHint = -2; ///< UserHandle.USER_CURRENT

    /// Writes the intent as Intent.writeToParcel of the runtime's SDK level does.
    void writeToParcel(AlienBinderParcel *parcel) const;
};
