// SPDX-License-Identifier: BSD-3-Clause
// Calls into the local objects of the process under test.
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/world.h"

#include <cstring>

namespace FakeBinder {

namespace {

/// Takes the header apart as libgbinder does: a request whose header cannot be read has no
/// interface and is payload from its first byte on.
void parseHeader(Message *request, Protocol protocol)
{
    const QByteArray &bytes = request->data.bytes;
    const int lengthAt = protocol == Protocol::Aidl2 ? 8 : 4;
    if (bytes.size() < lengthAt + 4)
        return;
    qint32 length = 0;
    memcpy(&length, bytes.constData() + lengthAt, sizeof(length));
    const qint64 end = lengthAt + 4 + (qint64(length) * 2 + 2 + 3) / 4 * 4;
    if (length < 0 || end > bytes.size())
        return;
    const QByteArray units = bytes.mid(lengthAt + 4, length * 2 + 2);
    if (!units.endsWith(QByteArray("\0\0", 2)))
        return;
    QString name(length, Qt::Uninitialized);
    memcpy(name.data(), units.constData(), size_t(length) * 2);
    request->interfaceName = name.toUtf8();
    request->payloadStart = int(end);
}

Answer transactLocal(LocalObject *object, const Call &call)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    Answer answer;
    answer.status = call.initialStatus;
    if (!object || !object->function)
        return answer;
    const QByteArray header = rpcHeader(world.protocol, call.interface.toUtf8());
    auto *request = world.make<Message>(Kind::RemoteRequest, object->label);
    request->references = 0; // the handler gets it lent
    request->borrowed = 1;
    request->data.bytes = (call.interface.isNull() ? QByteArray() : header) + call.payload;
    for (const int offset : call.offsets)
        request->data.offsets.append(offset + (call.interface.isNull() ? 0 : header.size()));
    parseHeader(request, world.protocol);
    ++object->borrowed;
    const GBinderLocalTransactFunc function = object->function;
    void *userData = object->userData;
    lock.unlock();
    GBinderLocalReply *pointer = function(reinterpret_cast<GBinderLocalObject *>(object),
        reinterpret_cast<GBinderRemoteRequest *>(request), call.code, call.flags, &answer.status,
        userData);
    lock.lock();
    --object->borrowed;
    --request->borrowed;
    answer.delivered = true;
    if (!pointer)
        return answer;
    // The handler's reference goes over to the library.
    if (Handle *reply = world.find(pointer, Kind::LocalReply, "reply of a local object")) {
        answer.hasReply = true;
        answer.bytes = static_cast<Message *>(reply)->data.bytes;
        if (reply->references > 0)
            --reply->references;
    }
    return answer;
}

} // namespace

Answer transact(const QString &publishedName, const Call &call)
{
    for (const PublishedService &service : published()) {
        if (service.name == publishedName)
            return transactObject(service.objectId, call);
    }
    Answer answer;
    answer.status = call.initialStatus;
    return answer;
}

Answer transactObject(quint32 objectId, const Call &call)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    LocalObject *object = world.localObject(objectId);
    lock.unlock();
    return transactLocal(object, call);
}

} // namespace FakeBinder
