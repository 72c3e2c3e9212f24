// SPDX-License-Identifier: BSD-3-Clause
// gbinder_client.h
#include "tests/support/fakegbinder/outcome.h"

using namespace FakeBinder;

namespace {

Request describe(
    const World &world, const Client &client, guint32 code, guint32 flags, const ParcelData &data)
{
    const QByteArray header = rpcHeader(world.protocol, client.interfaceName);
    Request request;
    request.service = client.remote->label;
    request.code = code;
    request.flags = flags;
    request.bytes = data.bytes;
    request.offsets = data.offsets;
    request.localObjects = data.localObjects;
    // Told from the bytes: a header that was overwritten is none.
    if (data.bytes.startsWith(header)) {
        request.interface = QString::fromUtf8(client.interfaceName);
        request.payload = data.bytes.mid(header.size());
    } else {
        request.payload = data.bytes;
    }
    return request;
}

/// The request's bytes; a null request stands for one without payload.
ParcelData requestData(World &world, const Client &client, GBinderLocalRequest *req, bool *ok)
{
    if (!req)
        return {rpcHeader(world.protocol, client.interfaceName), {}, {}};
    const auto *message = lookUp<Message>(world, req, Kind::LocalRequest, "client_transact");
    *ok = message != nullptr;
    return message ? message->data : ParcelData();
}

/// Holds the caller for as long as the service takes.
void await(Outcome &outcome)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    if (!outcome.client || outcome.reply.delay == 0)
        return;
    const RemoteObject *remote = outcome.client->remote;
    const auto isDead = [remote] { return remote->isDead; };
    if (outcome.reply.delay < 0)
        world.killed.wait(lock, isDead);
    else
        world.killed.wait_for(lock, std::chrono::milliseconds(outcome.reply.delay), isDead);
    if (remote->isDead)
        outcome.reply = Reply::failure(GBINDER_STATUS_DEAD_OBJECT);
    outcome.status = outcome.reply.status;
}

} // namespace

namespace FakeBinder {

Outcome transact(GBinderClient *pointer, const char *function, guint32 code, guint32 flags,
    GBinderLocalRequest *req)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    Outcome outcome;
    auto *client = lookUp<Client>(world, pointer, Kind::Client, function);
    bool ok = client != nullptr;
    const ParcelData data = ok ? requestData(world, *client, req, &ok) : ParcelData();
    if (!ok)
        return outcome;
    outcome.client = client;
    world.note(
        QStringLiteral("%1 %2 %3").arg(QString::fromLatin1(function), client->label).arg(code));
    const Request request = describe(world, *client, code, flags, data);
    world.requests.append(request);
    const auto observer = world.requestObserver;
    const Handler handler = client->remote->handler;
    const bool isDead = client->remote->isDead;
    lock.unlock();
    if (observer)
        observer(request);
    if (isDead)
        outcome.reply = Reply::failure(GBINDER_STATUS_DEAD_OBJECT);
    else if (handler)
        outcome.reply = handler(request);
    outcome.status = outcome.reply.status;
    return outcome;
}

Message *makeReply(World &world, const Outcome &outcome)
{
    if (!outcome.reply.hasData)
        return nullptr;
    auto *reply = world.make<Message>(Handle::Kind::RemoteReply, outcome.client->label);
    reply->data = {outcome.reply.bytes, outcome.reply.offsets, {}};
    return reply;
}

} // namespace FakeBinder

extern "C" {

GBinderClient *gbinder_client_new(GBinderRemoteObject *object, const char *iface)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    auto *remote = lookUp<RemoteObject>(world, object, Kind::RemoteObject, "client_new");
    if (!remote)
        return nullptr;
    if (world.failingClients.contains(remote->label)) {
        world.note(QStringLiteral("client_new %1 failed").arg(remote->label));
        return nullptr;
    }
    world.note(QStringLiteral("client_new %1").arg(remote->label));
    return reinterpret_cast<GBinderClient *>(world.make<Client>(remote, iface));
}

GBinderClient *gbinder_client_ref(GBinderClient *client)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.ref(client, Kind::Client);
    return client;
}

void gbinder_client_unref(GBinderClient *client)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.unref(client, Kind::Client);
}

const char *gbinder_client_interface(GBinderClient *client)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const auto *handle = lookUp<Client>(world, client, Kind::Client, "client_interface");
    return handle && !handle->interfaceName.isNull() ? handle->interfaceName.constData() : nullptr;
}

GBinderLocalRequest *gbinder_client_new_request(GBinderClient *client)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const auto *handle = lookUp<Client>(world, client, Kind::Client, "client_new_request");
    if (!handle)
        return nullptr;
    if (world.requestsFail) {
        world.note(QStringLiteral("client_new_request %1 failed").arg(handle->label));
        return nullptr;
    }
    world.note(QStringLiteral("client_new_request %1").arg(handle->label));
    auto *request = world.make<Message>(Kind::LocalRequest, handle->label);
    request->data.bytes = rpcHeader(world.protocol, handle->interfaceName);
    return reinterpret_cast<GBinderLocalRequest *>(request);
}

GBinderRemoteReply *gbinder_client_transact_sync_reply(
    GBinderClient *client, guint32 code, GBinderLocalRequest *req, int *status)
{
    Outcome outcome = transact(client, "client_transact_sync_reply", code, 0, req);
    // As in libgbinder, where a call that cannot be made leaves the status alone.
    if (!outcome.client)
        return nullptr;
    await(outcome);
    if (status)
        *status = outcome.status;
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    return reinterpret_cast<GBinderRemoteReply *>(makeReply(world, outcome));
}

int gbinder_client_transact_sync_oneway(
    GBinderClient *client, guint32 code, GBinderLocalRequest *req)
{
    return transact(client, "client_transact_sync_oneway", code, GBINDER_TX_FLAG_ONEWAY, req)
        .status;
}

} // extern "C"
