// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

/// Writes a binder parcel without objects as Android does.
class AndroidParcelWriter
{
public:
    void writeInt32(qint32 value);
    void writeInt64(qint64 value);
    /// A null QString goes out as Android's null string.
    void writeString16(const QString &text);
    /// A null array goes out as Android's null array.
    void writeByteArray(const QByteArray &bytes);
    /// Bytes that are a parcel already.
    void append(const QByteArray &parcel) { m_bytes.append(parcel); }

    QByteArray bytes() const { return m_bytes; }

private:
    void pad();

    QByteArray m_bytes;
};
