// SPDX-License-Identifier: BSD-3-Clause
// gbinder_local_request.h and gbinder_local_reply.h
#include "tests/support/fakegbinder/messagehandles.h"

using namespace FakeBinder;

namespace {

GBinderWriter writerOf(Message *message)
{
    GBinderWriter writer = {};
    writer.d[0] = message;
    return writer;
}

/// Nothing says what a writer of no message does.
GBinderWriter newWriter(const void *pointer, Kind kind, const char *function)
{
    if (!pointer) {
        World &world = World::instance();
        const std::lock_guard<std::mutex> lock(world.mutex);
        world.error(QStringLiteral("%1 of null").arg(QLatin1String(function)));
    }
    return writerOf(findMessage(pointer, kind, function));
}

/// A value that is appended through a writer of its own, as the short forms do.
template <typename Pointer, typename Value>
Pointer *appendTo(Pointer *pointer, Kind kind, void (*append)(GBinderWriter *, Value), Value value)
{
    if (Message *message = findMessage(pointer, kind, "append")) {
        GBinderWriter writer = writerOf(message);
        append(&writer, value);
    }
    return pointer;
}

} // namespace

extern "C" {

void gbinder_local_request_unref(GBinderLocalRequest *request)
{
    release(request, Kind::LocalRequest);
}

void gbinder_local_request_init_writer(GBinderLocalRequest *request, GBinderWriter *writer)
{
    *writer = newWriter(request, Kind::LocalRequest, "local_request_init_writer");
}

GBinderLocalRequest *gbinder_local_request_append_int32(GBinderLocalRequest *request, guint32 value)
{
    return appendTo(request, Kind::LocalRequest, gbinder_writer_append_int32, value);
}

GBinderLocalRequest *gbinder_local_request_append_string16(
    GBinderLocalRequest *request, const char *utf8)
{
    return appendTo(request, Kind::LocalRequest, gbinder_writer_append_string16, utf8);
}

GBinderLocalRequest *gbinder_local_request_append_local_object(
    GBinderLocalRequest *request, GBinderLocalObject *obj)
{
    return appendTo(request, Kind::LocalRequest, gbinder_writer_append_local_object, obj);
}

void gbinder_local_reply_unref(GBinderLocalReply *reply)
{
    release(reply, Kind::LocalReply);
}

void gbinder_local_reply_init_writer(GBinderLocalReply *reply, GBinderWriter *writer)
{
    *writer = newWriter(reply, Kind::LocalReply, "local_reply_init_writer");
}

GBinderLocalReply *gbinder_local_reply_append_int32(GBinderLocalReply *reply, guint32 value)
{
    return appendTo(reply, Kind::LocalReply, gbinder_writer_append_int32, value);
}

GBinderLocalReply *gbinder_local_reply_append_string16(GBinderLocalReply *reply, const char *utf8)
{
    return appendTo(reply, Kind::LocalReply, gbinder_writer_append_string16, utf8);
}

} // extern "C"
