// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

/// What android.os.Parcel writes of an exception that a service's method threw.
struct AndroidException
{
    /// android.os.Parcel, EX_...; those that something stands behind, or that are thrown here.
    enum Code : qint32 {
        Security = -1,
        BadParcelable = -2,
        IllegalArgument = -3,
        IllegalState = -5,
        ServiceSpecific = -8,
        Parcelable = -9
    };

    qint32 code = 0;
    QString message;
    QByteArray detail; ///< what the code has stand behind message and stack trace

    /// An exception of this code that has nothing more to say.
    static AndroidException of(qint32 code, const QString &message);
    /// An android.os.ParcelableException around an exception of that class.
    static AndroidException parcelable(const QString &className, const QString &message);

    /// @param stackTrace is sent from Android 9 on; null where none is.
    QByteArray toParcel(int sdk, const QString &stackTrace) const;
};
