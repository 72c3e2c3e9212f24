// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace FakeBinder {

/// Builds the bytes of a parcel: little-endian, every field padded to four bytes. It shares
/// no code with the gbinder writer, so that the one can be held against the other. Calls
/// chain: `ParcelWriter().int32(5).string16(QStringLiteral("a")).bytes()`.
class ParcelWriter
{
public:
    /// The two sides differ only in the padding, which no reader looks at, and in the empty
    /// byte array.
    enum class Style {
        Android, ///< Android's Parcel class: padding is zero
        Gbinder, ///< libgbinder: the padding of byte arrays and of the empty string16 is
                 ///< 0xff, an empty byte array goes out as the null array
    };

    explicit ParcelWriter(Style style = Style::Android) : m_style(style) { }

    ParcelWriter &int32(qint32 value);
    ParcelWriter &int64(qint64 value);
    ParcelWriter &boolean(bool value);
    ParcelWriter &real64(double value);
    /// A null QString goes out as the null string (length -1), an empty one as length 0.
    ParcelWriter &string16(const QString &value);
    ParcelWriter &nullString16();
    /// An int32 count and then each string.
    ParcelWriter &string16List(const QStringList &values);
    /// A null QByteArray goes out as the null array (length -1), an empty one as length 0.
    ParcelWriter &byteArray(const QByteArray &value);
    ParcelWriter &nullByteArray();
    /// Bytes as they are, without length or padding: for damaged parcels.
    ParcelWriter &raw(const QByteArray &value);
    /// An object of the sender's own process: what a local object of lumd looks like in a
    /// request of lumd. The id is the one of PublishedService or Request.
    ParcelWriter &localObject(quint32 id);
    /// An object of another process: what an Android object looks like to lumd. The id is
    /// the one that newRemoteObject gave.
    ParcelWriter &remoteObject(quint32 id);
    ParcelWriter &nullObject();

    /// The bytes written so far.
    QByteArray bytes() const { return m_bytes; }
    /// Where the objects begin, counted from the first byte.
    QVector<int> offsets() const { return m_offsets; }

private:
    void pad(char filler);
    template <typename Value> void append(Value value);

    Style m_style;
    QByteArray m_bytes;
    QVector<int> m_offsets;
};

} // namespace FakeBinder
