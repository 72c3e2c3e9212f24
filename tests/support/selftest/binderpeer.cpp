// SPDX-License-Identifier: BSD-3-Clause
// A daemon on gbinder, small enough to be seen through: it publishes the object "peer.object",
// waits for the service "alien", and each call of its object makes it call "alien" with the
// code and the payload that it got. Standard error tells the course of events.
#include <QCoreApplication>

#include <gbinder.h>

#include <cstdio>

namespace {

struct Peer
{
    GBinderServiceManager *manager = nullptr;
    GBinderRemoteObject *remote = nullptr;
    GBinderClient *client = nullptr;

    void connect();
    static void registered(GBinderServiceManager *, const char *, void *self);
    static void died(GBinderRemoteObject *, void *self);
    static GBinderLocalReply *called(GBinderLocalObject *object, GBinderRemoteRequest *request,
        guint code, guint, int *status, void *self);
};

void Peer::connect()
{
    remote = gbinder_remote_object_ref(
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr));
    client = gbinder_client_new(remote, "a.IAlien");
    gbinder_remote_object_add_death_handler(remote, died, this);
    fprintf(stderr, client ? "connected\n" : "not connected\n");
}

void Peer::registered(GBinderServiceManager *, const char *, void *self)
{
    static_cast<Peer *>(self)->connect();
}

void Peer::died(GBinderRemoteObject *, void *self)
{
    auto *peer = static_cast<Peer *>(self);
    gbinder_client_unref(peer->client);
    peer->client = nullptr;
    fprintf(stderr, "died\n");
}

GBinderLocalReply *Peer::called(GBinderLocalObject *object, GBinderRemoteRequest *request,
    guint code, guint, int *status, void *self)
{
    const auto *peer = static_cast<Peer *>(self);
    gint32 value = 0;
    gbinder_remote_request_read_int32(request, &value);
    GBinderLocalRequest *onward = gbinder_client_new_request(peer->client);
    gbinder_local_request_append_int32(onward, guint32(value));
    GBinderRemoteReply *answer =
        gbinder_client_transact_sync_reply(peer->client, code, onward, status);
    gint32 result = -1;
    gbinder_remote_reply_read_int32(answer, &result);
    gbinder_local_request_unref(onward);
    gbinder_remote_reply_unref(answer);
    GBinderLocalReply *reply = gbinder_local_object_new_reply(object);
    return gbinder_local_reply_append_int32(reply, guint32(result));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    Peer peer;
    peer.manager = gbinder_servicemanager_new("/dev/puddlejumper");
    if (!peer.manager) {
        fprintf(stderr, "no device\n");
        return 4;
    }
    gbinder_servicemanager_add_registration_handler(peer.manager, "alien", Peer::registered, &peer);
    GBinderLocalObject *object =
        gbinder_servicemanager_new_local_object(peer.manager, "a.IObject", Peer::called, &peer);
    GBinderServiceName *name = gbinder_servicename_new(peer.manager, object, "peer.object");
    fprintf(stderr, "up\n");
    const int result = QCoreApplication::exec();
    gbinder_servicename_unref(name);
    fprintf(stderr, "down\n");
    return result;
}
