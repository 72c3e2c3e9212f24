// SPDX-License-Identifier: BSD-3-Clause
#include "androidparcel.h"

#include <linux/android/binder.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr qint64 Alignment = 4;

} // namespace

AndroidParcel::AndroidParcel(QByteArray data, std::optional<QVector<quint64>> objects)
    : m_data(std::move(data)), m_objects(std::move(objects))
{
}

qint32 AndroidParcel::readInt32()
{
    qint32 value = 0;
    if (const char *bytes = take(sizeof(value)))
        std::memcpy(&value, bytes, sizeof(value));
    return value;
}

qint64 AndroidParcel::readInt64()
{
    qint64 value = 0;
    if (const char *bytes = take(sizeof(value)))
        std::memcpy(&value, bytes, sizeof(value));
    return value;
}

double AndroidParcel::readDouble()
{
    double value = 0;
    if (const char *bytes = take(sizeof(value)))
        std::memcpy(&value, bytes, sizeof(value));
    return value;
}

bool AndroidParcel::readBool()
{
    const qint32 value = readInt32();
    if (value != 0 && value != 1)
        fail(QStringLiteral("bool is %1").arg(value));
    return value == 1;
}

QString AndroidParcel::readString16()
{
    const qint32 length = readInt32();
    if (!ok() || length == -1)
        return {};
    if (length < 0) {
        fail(QStringLiteral("string16 of length %1").arg(length));
        return {};
    }
    if (length == 0) {
        // libgbinder, of all strings, fills the padding of the empty one with ones
        const qint32 terminator = readInt32();
        if (terminator != 0 && terminator != qint32(0xffff0000))
            fail(QStringLiteral("empty string16 without terminator"));
        return QStringLiteral("");
    }
    const qint64 textBytes = qint64(length) * qint64(sizeof(char16_t));
    const char *bytes = take(textBytes + qint64(sizeof(char16_t)));
    if (!bytes)
        return {};
    char16_t terminator = 0;
    std::memcpy(&terminator, bytes + textBytes, sizeof(terminator));
    if (terminator != 0) {
        fail(QStringLiteral("string16 without terminator"));
        return {};
    }
    QString text(length, Qt::Uninitialized);
    std::memcpy(text.data(), bytes, size_t(textBytes));
    return text;
}

QByteArray AndroidParcel::readByteArray()
{
    const qint32 length = readInt32();
    if (!ok() || length == -1)
        return {};
    if (length < 0) {
        fail(QStringLiteral("byte array of length %1").arg(length));
        return {};
    }
    const char *bytes = take(length);
    return bytes ? QByteArray(bytes, length) : QByteArray();
}

AndroidParcel::Binder AndroidParcel::readBinder()
{
    const qint64 offset = m_position;
    const char *bytes = take(sizeof(flat_binder_object));
    if (!bytes)
        return {};
    flat_binder_object object;
    std::memcpy(&object, bytes, sizeof(object));
    if (object.hdr.type == BINDER_TYPE_BINDER && object.binder == 0 && object.cookie == 0)
        return {};
    if (m_objects && !m_objects->contains(quint64(offset))) {
        fail(QStringLiteral("object that the driver did not record"));
        return {};
    }
    switch (object.hdr.type) {
    case BINDER_TYPE_HANDLE:
        return {Binder::Kind::Remote, object.handle, offset};
    case BINDER_TYPE_BINDER:
        return {Binder::Kind::Local, 0, offset};
    default:
        fail(QStringLiteral("object of type 0x%1").arg(object.hdr.type, 8, 16, QLatin1Char('0')));
        return {};
    }
}

AndroidParcel AndroidParcel::readParcel(qint32 size)
{
    const char *bytes = size < 0 ? nullptr : take(size);
    return AndroidParcel(bytes ? QByteArray(bytes, size) : QByteArray());
}

void AndroidParcel::fail(const QString &reason)
{
    if (ok())
        m_error = QStringLiteral("%1 before offset %2 of %3")
                      .arg(reason, QString::number(m_position), QString::number(m_data.size()));
}

void AndroidParcel::finish()
{
    if (m_position < m_data.size())
        fail(QStringLiteral("%1 bytes left unread").arg(m_data.size() - m_position));
}

const char *AndroidParcel::take(qint64 size)
{
    if (!ok())
        return nullptr;
    const qint64 padded = (size + Alignment - 1) / Alignment * Alignment;
    if (padded > m_data.size() - m_position) {
        fail(QStringLiteral("%1 bytes wanted").arg(padded));
        return nullptr;
    }
    const char *bytes = m_data.constData() + m_position;
    m_position += padded;
    if (!std::all_of(bytes + size, bytes + padded, [](char byte) { return byte == 0; })) {
        fail(QStringLiteral("padding is not zero"));
        return nullptr;
    }
    return bytes;
}
