// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/parcelwriter.h"

#include "tests/support/fakegbinder/binderobject.h"

#include <cstring>

namespace FakeBinder {

namespace {

constexpr quint32 LocalFlags = 0x17f; // priority 0x7f, accepts file descriptors
constexpr quint32 RemoteFlags = 0x100; // accepts file descriptors

} // namespace

template <typename Value> void ParcelWriter::append(Value value)
{
    char bytes[sizeof(value)];
    memcpy(bytes, &value, sizeof(value));
    m_bytes.append(bytes, sizeof(value));
}

void ParcelWriter::pad(char filler)
{
    while (m_bytes.size() % 4 != 0)
        m_bytes.append(filler);
}

ParcelWriter &ParcelWriter::int32(qint32 value)
{
    append(value);
    return *this;
}

ParcelWriter &ParcelWriter::int64(qint64 value)
{
    append(value);
    return *this;
}

ParcelWriter &ParcelWriter::boolean(bool value)
{
    return int32(value ? 1 : 0);
}

ParcelWriter &ParcelWriter::real64(double value)
{
    append(value);
    return *this;
}

ParcelWriter &ParcelWriter::string16(const QString &value)
{
    if (value.isNull())
        return nullString16();
    int32(value.size());
    for (const QChar unit : value)
        append(unit.unicode());
    append(quint16(0));
    pad(m_style == Style::Gbinder && value.isEmpty() ? '\xff' : '\0');
    return *this;
}

ParcelWriter &ParcelWriter::nullString16()
{
    return int32(-1);
}

ParcelWriter &ParcelWriter::string16List(const QStringList &values)
{
    int32(values.size());
    for (const QString &value : values)
        string16(value);
    return *this;
}

ParcelWriter &ParcelWriter::byteArray(const QByteArray &value)
{
    if (value.isNull() || (m_style == Style::Gbinder && value.isEmpty()))
        return nullByteArray();
    int32(value.size());
    m_bytes.append(value);
    pad(m_style == Style::Gbinder ? '\xff' : '\0');
    return *this;
}

ParcelWriter &ParcelWriter::nullByteArray()
{
    return int32(-1);
}

ParcelWriter &ParcelWriter::raw(const QByteArray &value)
{
    m_bytes.append(value);
    return *this;
}

ParcelWriter &ParcelWriter::localObject(quint32 id)
{
    m_offsets.append(m_bytes.size());
    append(TypeBinder);
    append(LocalFlags);
    append(quint64(id));
    append(quint64(0));
    return *this;
}

ParcelWriter &ParcelWriter::remoteObject(quint32 id)
{
    m_offsets.append(m_bytes.size());
    append(TypeHandle);
    append(RemoteFlags);
    append(quint64(id));
    append(quint64(0));
    return *this;
}

ParcelWriter &ParcelWriter::nullObject()
{
    append(TypeBinder);
    append(quint32(0));
    append(quint64(0));
    append(quint64(0));
    return *this;
}

} // namespace FakeBinder
