// SPDX-License-Identifier: BSD-3-Clause
// gbinder_reader.h
#include "tests/support/fakegbinder/binderobject.h"
#include "tests/support/fakegbinder/reader.h"

#include <cstring>

using namespace FakeBinder;

namespace {

ReaderState &stateOf(GBinderReader *reader)
{
    return *reinterpret_cast<ReaderState *>(reader);
}

const ReaderState &stateOf(const GBinderReader *reader)
{
    return *reinterpret_cast<const ReaderState *>(reader);
}

void noteError(const ReaderState &state, const char *what)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.error(QStringLiteral("reader of %1 %2: %3")
            .arg(kindName(state.message->kind), state.message->label, QString::fromLatin1(what)));
}

/// False, with an error noted, if the message that is read was released.
bool isAlive(const ReaderState &state)
{
    if (!state.message || state.message->isUsable())
        return true;
    noteError(state, "released before");
    return false;
}

bool canRead(const ReaderState &state, gsize size)
{
    if (!isAlive(state))
        return false;
    // See gbinder_reader_read_byte_array. libgbinder would go on in memory that is not the
    // message's.
    if (state.position > state.size) {
        noteError(state, "beyond the end");
        return false;
    }
    return size <= state.size - state.position;
}

template <typename Value> bool readValue(GBinderReader *reader, Value *value)
{
    ReaderState &state = stateOf(reader);
    if (!canRead(state, sizeof(Value)))
        return false;
    if (value)
        memcpy(value, state.start + state.position, sizeof(Value));
    state.position += sizeof(Value);
    return true;
}

template <typename Value> Value peek(const ReaderState &state, gsize ahead)
{
    Value value;
    memcpy(&value, state.start + state.position + ahead, sizeof(Value));
    return value;
}

gsize padded(gsize size)
{
    return (size + 3) / 4 * 4;
}

} // namespace

extern "C" {

gboolean gbinder_reader_at_end(const GBinderReader *reader)
{
    const ReaderState &state = stateOf(reader);
    return !isAlive(state) || state.position >= state.size;
}

gboolean gbinder_reader_read_bool(GBinderReader *reader, gboolean *value)
{
    guint32 word = 0;
    if (!readValue(reader, &word))
        return FALSE;
    if (value)
        *value = word != 0;
    return TRUE;
}

gboolean gbinder_reader_read_int32(GBinderReader *reader, gint32 *value)
{
    return readValue(reader, value);
}

gboolean gbinder_reader_read_int64(GBinderReader *reader, gint64 *value)
{
    return readValue(reader, value);
}

gboolean gbinder_reader_read_double(GBinderReader *reader, gdouble *value)
{
    return readValue(reader, value);
}

gboolean gbinder_reader_read_nullable_string16_utf16(
    GBinderReader *reader, const gunichar2 **out, gsize *len)
{
    ReaderState &state = stateOf(reader);
    if (!canRead(state, sizeof(gint32)))
        return FALSE;
    const auto length = peek<gint32>(state, 0);
    const gunichar2 *units = nullptr;
    gsize size = 0;
    if (length >= 0) {
        size = padded((gsize(length) + 1) * sizeof(gunichar2));
        if (!canRead(state, sizeof(gint32) + size)
            || peek<gunichar2>(state, sizeof(gint32) + gsize(length) * sizeof(gunichar2)) != 0)
            return FALSE;
        units = reinterpret_cast<const gunichar2 *>(state.start + state.position + sizeof(gint32));
    } else if (length != -1) {
        return FALSE;
    }
    state.position += sizeof(gint32) + size;
    if (out)
        *out = units;
    if (len)
        *len = length < 0 ? 0 : gsize(length);
    return TRUE;
}

const gunichar2 *gbinder_reader_read_string16_utf16(GBinderReader *reader, gsize *len)
{
    const gunichar2 *units = nullptr;
    return gbinder_reader_read_nullable_string16_utf16(reader, &units, len) ? units : nullptr;
}

gboolean gbinder_reader_read_nullable_string16(GBinderReader *reader, char **out)
{
    const gunichar2 *units = nullptr;
    gsize length = 0;
    if (!gbinder_reader_read_nullable_string16_utf16(reader, &units, &length))
        return FALSE;
    if (out)
        *out = units ? g_utf16_to_utf8(units, glong(length), nullptr, nullptr, nullptr) : nullptr;
    return TRUE;
}

char *gbinder_reader_read_string16(GBinderReader *reader)
{
    char *text = nullptr;
    return gbinder_reader_read_nullable_string16(reader, &text) ? text : nullptr;
}

gboolean gbinder_reader_skip_string16(GBinderReader *reader)
{
    return gbinder_reader_read_nullable_string16_utf16(reader, nullptr, nullptr);
}

const void *gbinder_reader_read_byte_array(GBinderReader *reader, gsize *len)
{
    ReaderState &state = stateOf(reader);
    if (len)
        *len = 0;
    if (!canRead(state, sizeof(gint32)))
        return nullptr;
    const auto length = peek<gint32>(state, 0);
    const gsize size = length > 0 ? gsize(length) : 0;
    if (!canRead(state, sizeof(gint32) + size))
        return nullptr;
    const char *bytes = state.start + state.position + sizeof(gint32);
    // As in libgbinder, where missing padding takes the position beyond the end.
    state.position += sizeof(gint32) + padded(size);
    if (len)
        *len = size;
    return bytes;
}

gboolean gbinder_reader_read_nullable_object(GBinderReader *reader, GBinderRemoteObject **obj)
{
    ReaderState &state = stateOf(reader);
    if (obj)
        *obj = nullptr;
    if (!canRead(state, ObjectSize) || !state.message
        || !state.message->data.offsets.contains(int(state.position) + state.message->payloadStart))
        return FALSE;
    const auto type = peek<guint32>(state, 0);
    const auto id = peek<guint64>(state, 8);
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    RemoteObject *object = type == TypeHandle ? world.remoteObject(id) : nullptr;
    if (!object && !(type == TypeBinder && id == 0))
        return FALSE;
    state.position += ObjectSize;
    if (obj && object) {
        ++object->references;
        world.note(QStringLiteral("reader_read_object %1").arg(object->label));
        *obj = reinterpret_cast<GBinderRemoteObject *>(object);
    }
    return TRUE;
}

GBinderRemoteObject *gbinder_reader_read_object(GBinderReader *reader)
{
    GBinderRemoteObject *object = nullptr;
    gbinder_reader_read_nullable_object(reader, &object);
    return object;
}

gsize gbinder_reader_bytes_read(const GBinderReader *reader)
{
    return stateOf(reader).position;
}

gsize gbinder_reader_bytes_remaining(const GBinderReader *reader)
{
    return stateOf(reader).size - stateOf(reader).position;
}

} // extern "C"
