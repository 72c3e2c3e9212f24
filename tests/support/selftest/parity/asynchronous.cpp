// SPDX-License-Identifier: BSD-3-Clause
#include "asynchronous.h"

#include "wire.h"

#include <cstdio>
#include <functional>

#include <unistd.h>

namespace {

// Milliseconds; the second is more than a busy machine keeps a process waiting.
constexpr int Delay = 60;
constexpr int LongDelay = 1500;

struct Call
{
    const char *name;
    GBinderClient *client;
    GBinderRemoteReply *reply = nullptr;
    bool isDone = false;
    bool leavesTheClient = false;
};

void takeReply(GBinderClient *client, GBinderRemoteReply *reply, int status, void *data)
{
    auto *call = static_cast<Call *>(data);
    printf("%s: client %d reply %d status %d\n", call->name, client == call->client,
        reply != nullptr, status);
    call->reply = gbinder_remote_reply_ref(reply);
    if (call->leavesTheClient)
        gbinder_client_unref(client);
}

void end(void *data)
{
    auto *call = static_cast<Call *>(data);
    printf("%s: done\n", call->name);
    call->isDone = true;
}

void turnUntil(const std::function<bool()> &condition)
{
    while (!condition()) {
        g_main_context_iteration(nullptr, FALSE);
        usleep(1000);
    }
}

void turnFor(int milliseconds)
{
    const gint64 deadline = g_get_monotonic_time() + milliseconds * 1000;
    turnUntil([deadline] { return g_get_monotonic_time() >= deadline; });
}

gulong start(Call *call, guint32 flags = 0)
{
    // The request may go at once, and nothing is told before the loop turns.
    GBinderLocalRequest *request = gbinder_client_new_request(call->client);
    gbinder_local_request_append_int32(request, 9);
    const gulong id =
        gbinder_client_transact(call->client, 5, flags, request, takeReply, end, call);
    gbinder_local_request_unref(request);
    usleep(10000);
    printf("%s: started %d\n", call->name, id != 0);
    return id;
}

void finish(Call *call)
{
    turnUntil([call] { return call->isDone; });
    if (!call->reply)
        return;
    gint32 value = 0;
    const gboolean ok = gbinder_remote_reply_read_int32(call->reply, &value);
    printf("%s: %d %d\n", call->name, ok, value);
    gbinder_remote_reply_unref(call->reply);
}

void callsThatAreAnswered(GBinderClient *client)
{
    for (const int delay : {0, Delay}) {
        Wire::delayReplies(delay);
        Call call{"answered", client};
        start(&call);
        finish(&call);
        printf("received %zu\n", Wire::lastRequest().bytes.size());
    }
    Wire::delayReplies(0);
    Call call{"oneway", client};
    start(&call, GBINDER_TX_FLAG_ONEWAY);
    finish(&call);
    printf("without a client %lu\n",
        gbinder_client_transact(nullptr, 5, 0, nullptr, takeReply, end, &call));
}

void callsThatAreCancelled(GBinderClient *client)
{
    Call early{"cancelled at once", client};
    gbinder_client_cancel(client, start(&early));
    printf("%s: returned %d\n", early.name, early.isDone);
    finish(&early);

    Wire::delayReplies(LongDelay);
    Call late{"cancelled later", client};
    const gulong id = start(&late);
    turnFor(Delay);
    gbinder_client_cancel(client, id);
    turnFor(Delay);
    // The thread that makes the call is not free before the answer.
    printf("%s: returned %d\n", late.name, late.isDone);
    finish(&late);
    gbinder_client_cancel(client, id);
    gbinder_client_cancel(client, 0);
    gbinder_client_cancel(nullptr, id);
}

void callsWhoseClientIsReleased(GBinderRemoteObject *peer)
{
    Wire::delayReplies(0);
    Call inTheReply{"released in the reply", gbinder_client_new(peer, "a.b.IPeer")};
    inTheReply.leavesTheClient = true;
    start(&inTheReply);
    finish(&inTheReply);

    Wire::delayReplies(Delay);
    Call underWay{"released under way", gbinder_client_new(peer, "a.b.IPeer")};
    start(&underWay);
    gbinder_client_unref(underWay.client);
    finish(&underWay);
}

void callThatDies(GBinderClient *client)
{
    Wire::delayReplies(-1);
    Call call{"died", client};
    start(&call);
    turnFor(Delay);
    printf("%s: done %d\n", call.name, call.isDone);
    Wire::killPeer();
    finish(&call);
}

} // namespace

void compareAsynchronousCalls(GBinderRemoteObject *peer, GBinderClient *client)
{
    Wire::setReply({std::string("\1\0\0\0", 4), {}});
    callsThatAreAnswered(client);
    callsThatAreCancelled(client);
    callsWhoseClientIsReleased(peer);
    callThatDies(client);
}
