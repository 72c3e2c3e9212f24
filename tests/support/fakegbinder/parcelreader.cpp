// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/parcelreader.h"

#include "tests/support/fakegbinder/binderobject.h"

#include <cstring>

namespace FakeBinder {

namespace {

template <typename Value> Value load(const char *bytes)
{
    Value value = 0;
    if (bytes)
        memcpy(&value, bytes, sizeof(value));
    return value;
}

qint64 padded(qint64 size)
{
    return (size + 3) / 4 * 4;
}

} // namespace

ParcelReader::ParcelReader(const QByteArray &bytes) : m_bytes(bytes) { }

const char *ParcelReader::take(qint64 size)
{
    if (m_bad || size < 0 || size > m_bytes.size() - m_position) {
        m_bad = true;
        return nullptr;
    }
    const char *bytes = m_bytes.constData() + m_position;
    m_position += int(size);
    return bytes;
}

qint32 ParcelReader::int32()
{
    return load<qint32>(take(4));
}

qint64 ParcelReader::int64()
{
    return load<qint64>(take(8));
}

bool ParcelReader::boolean()
{
    const qint32 value = int32();
    if (value != 0 && value != 1)
        m_bad = true;
    return !m_bad && value == 1;
}

double ParcelReader::real64()
{
    return load<double>(take(8));
}

QString ParcelReader::string16()
{
    const qint32 length = int32();
    if (m_bad || length == -1)
        return {};
    const qint64 size = (qint64(length) + 1) * 2;
    const char *bytes = length < 0 ? nullptr : take(padded(size));
    if (!bytes || bytes[size - 2] != 0 || bytes[size - 1] != 0) {
        m_bad = true;
        return {};
    }
    QString text(length, Qt::Uninitialized);
    memcpy(text.data(), bytes, size_t(size - 2));
    return text;
}

QStringList ParcelReader::string16List()
{
    QStringList list;
    const qint32 count = int32();
    for (qint32 i = 0; i < count && !m_bad; ++i)
        list.append(string16());
    return list;
}

QByteArray ParcelReader::byteArray()
{
    const qint32 length = int32();
    if (m_bad || length == -1)
        return {};
    const char *bytes = length < 0 ? nullptr : take(padded(length));
    if (!bytes) {
        m_bad = true;
        return {};
    }
    return {bytes, length};
}

ParcelReader::Object ParcelReader::object()
{
    const char *bytes = take(ObjectSize);
    if (!bytes)
        return {};
    const auto type = load<quint32>(bytes);
    const auto id = load<quint64>(bytes + 8);
    if (type != TypeBinder && type != TypeHandle) {
        m_bad = true;
        return {};
    }
    return {type == TypeBinder && id == 0, type == TypeBinder && id != 0, quint32(id)};
}

} // namespace FakeBinder
