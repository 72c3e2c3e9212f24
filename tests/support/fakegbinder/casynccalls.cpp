// SPDX-License-Identifier: BSD-3-Clause
// gbinder_client.h: calls whose caller does not wait. The Android side is asked at once, as if
// by a thread of the library's pool; the answer comes from the glib main loop.
#include "tests/support/fakegbinder/outcome.h"

#include <unistd.h>

namespace FakeBinder {

namespace {

void end(gulong id)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    if (!world.calls.contains(id))
        return; // ended before, by the death of the service
    const World::AsynchronousCall call = world.calls.take(id);
    Message *reply = nullptr;
    if (!call.isCancelled && call.function) {
        reply = makeReply(world, {call.reply.status, call.reply, call.client});
        if (reply) {
            reply->references = 0; // lent for the time of the callback
            reply->borrowed = 1;
        }
        lock.unlock();
        call.function(reinterpret_cast<GBinderClient *>(call.client),
            reinterpret_cast<GBinderRemoteReply *>(reply), call.reply.status, call.userData);
    } else {
        lock.unlock();
    }
    if (call.destroy)
        call.destroy(call.userData);
    lock.lock();
    if (reply)
        --reply->borrowed;
    --call.client->borrowed;
}

void endAfter(int milliseconds, gulong id)
{
    const auto run = [](gpointer data) -> gboolean {
        end(gulong(data));
        return G_SOURCE_REMOVE;
    };
    if (milliseconds == 0)
        World::defer([id] { end(id); });
    else if (milliseconds > 0)
        g_timeout_add(guint(milliseconds), run, gpointer(id));
}

/// libgbinder's threads keep its process until their calls have been answered.
[[gnu::destructor]] void waitForTheUnanswered()
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    for (const World::AsynchronousCall &call : qAsConst(world.calls)) {
        while (call.reply.delay < 0)
            pause();
    }
}

} // namespace

void failCalls(const RemoteObject *object)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.killed.notify_all();
    for (auto call = world.calls.begin(); call != world.calls.end(); ++call) {
        if (call->client->remote != object)
            continue;
        call->reply = Reply::failure(GBINDER_STATUS_DEAD_OBJECT);
        endAfter(0, call.key());
    }
}

} // namespace FakeBinder

using namespace FakeBinder;

extern "C" {

gulong gbinder_client_transact(GBinderClient *client, guint32 code, guint32 flags,
    GBinderLocalRequest *req, GBinderClientReplyFunc reply, GDestroyNotify destroy, void *user_data)
{
    Outcome outcome = transact(client, "client_transact", code, flags, req);
    if (!outcome.client)
        return 0;
    if (flags & GBINDER_TX_FLAG_ONEWAY)
        outcome.reply = {outcome.status, false, {}, {}};
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    ++outcome.client->borrowed; // the library's own reference
    const gulong id = world.nextCallId++;
    world.calls.insert(id, {outcome.client, outcome.reply, reply, destroy, user_data});
    endAfter(outcome.reply.delay, id);
    return id;
}

void gbinder_client_cancel(GBinderClient *client, gulong id)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const auto *handle = lookUp<Client>(world, client, Kind::Client, "client_cancel");
    if (!handle)
        return;
    world.note(QStringLiteral("client_cancel %1").arg(handle->label));
    const auto call = world.calls.find(id);
    if (call != world.calls.end())
        call->isCancelled = true;
}

} // extern "C"
