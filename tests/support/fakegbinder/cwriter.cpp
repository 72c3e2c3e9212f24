// SPDX-License-Identifier: BSD-3-Clause
// gbinder_writer.h
#include "tests/support/fakegbinder/binderobject.h"
#include "tests/support/fakegbinder/world.h"

#include <cstring>

using namespace FakeBinder;

namespace {

constexpr guint32 AcceptsFds = 0x100;
constexpr guint32 LocalPriority = 0x7f;

/// The message behind a writer; null for a writer that was initialised with none.
Message *messageOf(World &world, const GBinderWriter *writer, const char *function)
{
    auto *message = static_cast<Message *>(const_cast<void *>(writer->d[0]));
    if (message && !message->isUsable()) {
        world.error(QStringLiteral("%1 %2: released before")
                .arg(QString::fromLatin1(function), message->label));
        return nullptr;
    }
    return message;
}

void append(GBinderWriter *writer, const void *bytes, gsize size, char filler = 0)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    Message *message = messageOf(world, writer, "writer_append");
    if (!message)
        return;
    QByteArray &out = message->data.bytes;
    out.append(static_cast<const char *>(bytes), int(size));
    out.append(int((4 - size % 4) % 4), filler);
}

template <typename Value> void appendValue(GBinderWriter *writer, Value value)
{
    append(writer, &value, sizeof(value));
}

void appendString16(GBinderWriter *writer, const ushort *units, gssize length)
{
    if (!units) {
        appendValue(writer, gint32(-1));
        return;
    }
    appendValue(writer, gint32(length));
    if (length == 0) {
        // What libgbinder puts out for the empty string.
        appendValue(writer, guint32(0xffff0000));
        return;
    }
    QByteArray text(reinterpret_cast<const char *>(units), int(length) * 2);
    text.append(2, '\0');
    append(writer, text.constData(), gsize(text.size()));
}

void appendObject(
    GBinderWriter *writer, guint32 type, guint32 flags, guint64 handle, const LocalObject *local)
{
    const guint32 head[] = {type, flags};
    const guint64 tail[] = {handle, 0};
    char object[ObjectSize];
    memcpy(object, head, sizeof(head));
    memcpy(object + sizeof(head), tail, sizeof(tail));
    if (auto *message = static_cast<Message *>(const_cast<void *>(writer->d[0]))) {
        // The null object is not one that the kernel has to translate.
        if (handle != 0)
            message->data.offsets.append(message->data.bytes.size());
        if (local)
            message->data.localObjects.append(local->id);
    }
    append(writer, object, sizeof(object));
}

} // namespace

extern "C" {

void gbinder_writer_append_int8(GBinderWriter *writer, guint8 value)
{
    appendValue(writer, value);
}

void gbinder_writer_append_int16(GBinderWriter *writer, guint16 value)
{
    appendValue(writer, value);
}

void gbinder_writer_append_int32(GBinderWriter *writer, guint32 value)
{
    appendValue(writer, value);
}

void gbinder_writer_append_int64(GBinderWriter *writer, guint64 value)
{
    appendValue(writer, value);
}

void gbinder_writer_append_float(GBinderWriter *writer, gfloat value)
{
    appendValue(writer, value);
}

void gbinder_writer_append_double(GBinderWriter *writer, gdouble value)
{
    appendValue(writer, value);
}

void gbinder_writer_append_bool(GBinderWriter *writer, gboolean value)
{
    appendValue(writer, guint32(value ? 1 : 0));
}

void gbinder_writer_append_string16(GBinderWriter *writer, const char *utf8)
{
    const QString text = QString::fromUtf8(utf8);
    appendString16(writer, utf8 ? text.utf16() : nullptr, text.size());
}

void gbinder_writer_append_string16_utf16(
    GBinderWriter *writer, const gunichar2 *utf16, gssize length)
{
    if (utf16 && length < 0) {
        length = 0;
        while (utf16[length] != 0)
            ++length;
    }
    if (!utf16 && length != 0) {
        World &world = World::instance();
        const std::lock_guard<std::mutex> lock(world.mutex);
        world.error(QStringLiteral("writer_append_string16_utf16: NULL with a length"));
    }
    appendString16(writer, utf16, length);
}

void gbinder_writer_append_bytes(GBinderWriter *writer, const void *data, gsize size)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    if (Message *message = messageOf(world, writer, "writer_append_bytes"))
        message->data.bytes.append(static_cast<const char *>(data), int(size));
}

void gbinder_writer_append_byte_array(GBinderWriter *writer, const void *byte_array, gint32 len)
{
    if (!byte_array || len <= 0) {
        appendValue(writer, gint32(-1));
        return;
    }
    appendValue(writer, len);
    append(writer, byte_array, gsize(len), '\xff');
}

void gbinder_writer_append_local_object(GBinderWriter *writer, GBinderLocalObject *obj)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    const auto *object =
        lookUp<LocalObject>(world, obj, Kind::LocalObject, "writer_append_local_object");
    lock.unlock();
    appendObject(writer, TypeBinder, object ? AcceptsFds | LocalPriority : 0,
        object ? object->id : 0, object);
}

void gbinder_writer_append_remote_object(GBinderWriter *writer, GBinderRemoteObject *obj)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    const auto *object =
        lookUp<RemoteObject>(world, obj, Kind::RemoteObject, "writer_append_remote_object");
    lock.unlock();
    appendObject(writer, object ? TypeHandle : TypeBinder, object ? AcceptsFds : 0,
        object ? object->id : 0, nullptr);
}

gsize gbinder_writer_bytes_written(GBinderWriter *writer)
{
    gsize size = 0;
    gbinder_writer_get_data(writer, &size);
    return size;
}

const void *gbinder_writer_get_data(GBinderWriter *writer, gsize *size)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const Message *message = messageOf(world, writer, "writer_get_data");
    if (size)
        *size = message ? gsize(message->data.bytes.size()) : 0;
    return message ? message->data.bytes.constData() : nullptr;
}

void gbinder_writer_overwrite_int32(GBinderWriter *writer, gsize offset, gint32 value)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    Message *message = messageOf(world, writer, "writer_overwrite_int32");
    if (!message)
        return;
    QByteArray &bytes = message->data.bytes;
    if (offset + sizeof(value) > gsize(bytes.size())) {
        world.error(QStringLiteral("writer_overwrite_int32: beyond the end"));
        return;
    }
    memcpy(bytes.data() + offset, &value, sizeof(value));
}

} // extern "C"
