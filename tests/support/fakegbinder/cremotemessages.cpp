// SPDX-License-Identifier: BSD-3-Clause
// gbinder_remote_request.h and gbinder_remote_reply.h
#include "tests/support/fakegbinder/messagehandles.h"
#include "tests/support/fakegbinder/reader.h"

#include <cstring>

using namespace FakeBinder;

namespace FakeBinder {

void initReader(GBinderReader *reader, Message *message)
{
    memset(reader, 0, sizeof(*reader));
    if (!message)
        return;
    const QByteArray &bytes = message->data.bytes;
    const int start = message->payloadStart;
    const ReaderState state = {message, bytes.constData() + start, gsize(bytes.size() - start), 0};
    memcpy(reader, &state, sizeof(state));
}

} // namespace FakeBinder

namespace {

template <typename Value>
gboolean readFrom(
    const void *pointer, Kind kind, gboolean (*read)(GBinderReader *, Value *), Value *value)
{
    GBinderReader reader;
    initReader(&reader, findMessage(pointer, kind, "read"));
    return read(&reader, value);
}

template <typename Result>
Result *readFrom(const void *pointer, Kind kind, Result *(*read)(GBinderReader *))
{
    GBinderReader reader;
    initReader(&reader, findMessage(pointer, kind, "read"));
    return read(&reader);
}

} // namespace

extern "C" {

const char *gbinder_remote_request_interface(GBinderRemoteRequest *req)
{
    const Message *message = findMessage(req, Kind::RemoteRequest, "remote_request_interface");
    return message && !message->interfaceName.isNull() ? message->interfaceName.constData()
                                                       : nullptr;
}

void gbinder_remote_request_unref(GBinderRemoteRequest *req)
{
    release(req, Kind::RemoteRequest);
}

void gbinder_remote_request_init_reader(GBinderRemoteRequest *req, GBinderReader *reader)
{
    initReader(reader, findMessage(req, Kind::RemoteRequest, "remote_request_init_reader"));
}

gboolean gbinder_remote_request_read_int32(GBinderRemoteRequest *req, gint32 *value)
{
    return readFrom(req, Kind::RemoteRequest, gbinder_reader_read_int32, value);
}

char *gbinder_remote_request_read_string16(GBinderRemoteRequest *req)
{
    return readFrom<char>(req, Kind::RemoteRequest, gbinder_reader_read_string16);
}

GBinderRemoteReply *gbinder_remote_reply_ref(GBinderRemoteReply *reply)
{
    return addReference(reply, Kind::RemoteReply);
}

void gbinder_remote_reply_unref(GBinderRemoteReply *reply)
{
    release(reply, Kind::RemoteReply);
}

void gbinder_remote_reply_init_reader(GBinderRemoteReply *reply, GBinderReader *reader)
{
    initReader(reader, findMessage(reply, Kind::RemoteReply, "remote_reply_init_reader"));
}

gboolean gbinder_remote_reply_read_int32(GBinderRemoteReply *reply, gint32 *value)
{
    return readFrom(reply, Kind::RemoteReply, gbinder_reader_read_int32, value);
}

GBinderRemoteObject *gbinder_remote_reply_read_object(GBinderRemoteReply *reply)
{
    return readFrom<GBinderRemoteObject>(reply, Kind::RemoteReply, gbinder_reader_read_object);
}

} // extern "C"
