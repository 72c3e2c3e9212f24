// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

/// Pieces of a parcel as Android writes them, to be put together.
namespace Wire {

inline QByteArray word(qint32 value)
{
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

inline QByteArray longWord(qint64 value)
{
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

inline QByteArray real(double value)
{
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

inline QByteArray nullString()
{
    return word(-1);
}

inline QByteArray string16(const QString &text)
{
    QByteArray data = word(text.size());
    data.append(reinterpret_cast<const char *>(text.utf16()), (text.size() + 1) * 2);
    return data.leftJustified((data.size() + 3) / 4 * 4, '\0');
}

inline QByteArray nullObject()
{
    return QByteArray::fromHex("852a62737f010000").leftJustified(24, '\0');
}

inline QByteArray remoteObject(qint32 handle)
{
    return QByteArray::fromHex("852a68737f010000") + word(handle) + word(0) + word(0) + word(0);
}

/// A Bundle with the entries, given as the bytes of their keys and values.
inline QByteArray bundle(qint32 count, const QByteArray &entries)
{
    return word(4 + entries.size()) + word(0x4C444E42) + word(count) + entries;
}

} // namespace Wire
