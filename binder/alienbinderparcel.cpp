// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderparcel.h"

#include "binder/logging.h"

namespace {

// QString::fromUtf16 takes its time over the byte order of each unit, which only a byte order
// mark in front can change.
QString fromUtf16(const gunichar2 *units, int length)
{
    if (length > 0 && (*units == QChar::ByteOrderMark || *units == QChar::ByteOrderSwapped))
        return QString::fromUtf16(units, length);
    return QString(reinterpret_cast<const QChar *>(units), length);
}

} // namespace

AlienBinderParcel::AlienBinderParcel(GBinderWriter *writer) : m_writer(writer) { }

AlienBinderParcel::AlienBinderParcel(GBinderReader *reader) : m_reader(reader) { }

AlienBinderParcel::AlienBinderParcel(GBinderLocalRequest *request)
    : m_writer(request ? &m_ownWriter : nullptr)
{
    if (m_writer)
        gbinder_local_request_init_writer(request, m_writer);
}

AlienBinderParcel::AlienBinderParcel(GBinderRemoteRequest *request)
    : m_reader(request ? &m_ownReader : nullptr)
{
    if (m_reader)
        gbinder_remote_request_init_reader(request, m_reader);
}

AlienBinderParcel::AlienBinderParcel(GBinderLocalReply *reply)
    : m_writer(reply ? &m_ownWriter : nullptr)
{
    if (m_writer)
        gbinder_local_reply_init_writer(reply, m_writer);
}

AlienBinderParcel::AlienBinderParcel(GBinderRemoteReply *reply)
    : m_reader(reply ? &m_ownReader : nullptr)
{
    if (m_reader)
        gbinder_remote_reply_init_reader(reply, m_reader);
}

void AlienBinderParcel::writeBool(bool value)
{
    if (m_writer)
        gbinder_writer_append_bool(m_writer, value);
}

void AlienBinderParcel::writeInt32(qint32 value)
{
    if (m_writer)
        gbinder_writer_append_int32(m_writer, static_cast<guint32>(value));
}

void AlienBinderParcel::writeInt64(qint64 value)
{
    if (m_writer)
        gbinder_writer_append_int64(m_writer, static_cast<guint64>(value));
}

void AlienBinderParcel::writeDouble(double value)
{
    if (m_writer)
        gbinder_writer_append_double(m_writer, value);
}

void AlienBinderParcel::writeString(const QString &value)
{
    if (m_writer)
        gbinder_writer_append_string16_utf16(
            m_writer, value.isNull() ? nullptr : value.utf16(), value.size());
}

void AlienBinderParcel::writeStringList(const QStringList &values)
{
    writeInt32(values.size());
    for (const QString &value : values)
        writeString(value);
}

void AlienBinderParcel::writeByteArray(const QByteArray &value)
{
    if (m_writer)
        gbinder_writer_append_byte_array(m_writer, value.constData(), value.size());
}

void AlienBinderParcel::writeLocalObject(GBinderLocalObject *object)
{
    if (m_writer)
        gbinder_writer_append_local_object(m_writer, object);
}

void AlienBinderParcel::writeRemoteObject(GBinderRemoteObject *object)
{
    if (m_writer)
        gbinder_writer_append_remote_object(m_writer, object);
}

bool AlienBinderParcel::readBool()
{
    gboolean value = FALSE;
    if (hasData())
        gbinder_reader_read_bool(m_reader, &value);
    return value != FALSE;
}

qint32 AlienBinderParcel::readInt32()
{
    qint32 value = -1;
    if (hasData() && !gbinder_reader_read_int32(m_reader, &value))
        qCCritical(parcelLog) << "Couldn't read result";
    return value;
}

qint64 AlienBinderParcel::readInt64()
{
    gint64 value = -1;
    if (hasData())
        gbinder_reader_read_int64(m_reader, &value);
    return value;
}

double AlienBinderParcel::readDouble()
{
    gdouble value = -1.0;
    if (hasData())
        gbinder_reader_read_double(m_reader, &value);
    return value;
}

QString AlienBinderParcel::readString()
{
    if (!hasData())
        return {};
    gsize length{};
    const gunichar2 *units = gbinder_reader_read_string16_utf16(m_reader, &length);
    return fromUtf16(units, static_cast<int>(length));
}

QStringList AlienBinderParcel::readStringList()
{
    QStringList values;
    if (!hasData())
        return values;
    gint32 count = 0;
    gbinder_reader_read_int32(m_reader, &count);
    for (gint32 i = 0; i < count; ++i)
        values.append(readString());
    return values;
}

QByteArray AlienBinderParcel::readByteArray()
{
    if (!hasData())
        return {};
    gsize size{};
    const void *bytes = gbinder_reader_read_byte_array(m_reader, &size);
    QByteArray value(static_cast<const char *>(bytes), static_cast<int>(size));
    qCDebug(parcelLog) << "ByteArray size read: " << value.size();
    return value;
}

GBinderRemoteObject *AlienBinderParcel::readObject()
{
    GBinderRemoteObject *object = nullptr;
    if (hasData())
        gbinder_reader_read_nullable_object(m_reader, &object);
    return object;
}

bool AlienBinderParcel::hasData() const
{
    return m_reader && !gbinder_reader_at_end(m_reader);
}
