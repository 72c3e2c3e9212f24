// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gbinder.h>

#include <memory>

/// Owners of one reference to a gbinder object each.
namespace GBinder {

template <auto release> struct Release
{
    template <typename Object> void operator()(Object *object) const { release(object); }
};

using ServiceManager =
    std::unique_ptr<GBinderServiceManager, Release<gbinder_servicemanager_unref>>;
using ServiceName = std::unique_ptr<GBinderServiceName, Release<gbinder_servicename_unref>>;
using RemoteObject = std::unique_ptr<GBinderRemoteObject, Release<gbinder_remote_object_unref>>;
/// Dropped rather than only released: no call reaches the object's handler afterwards.
using LocalObject = std::unique_ptr<GBinderLocalObject, Release<gbinder_local_object_drop>>;
using Client = std::unique_ptr<GBinderClient, Release<gbinder_client_unref>>;
using LocalRequest = std::unique_ptr<GBinderLocalRequest, Release<gbinder_local_request_unref>>;
using RemoteReply = std::unique_ptr<GBinderRemoteReply, Release<gbinder_remote_reply_unref>>;

struct RemoveDeathHandler
{
    gulong id{};

    void operator()(GBinderRemoteObject *object) const
    {
        gbinder_remote_object_remove_handler(object, id);
    }
};
/// Hears of the death of an object, which it does not own: it goes before the RemoteObject.
using DeathWatch = std::unique_ptr<GBinderRemoteObject, RemoveDeathHandler>;

inline DeathWatch watchDeath(
    GBinderRemoteObject *object, GBinderRemoteObjectNotifyFunc died, void *listener)
{
    return {object, {gbinder_remote_object_add_death_handler(object, died, listener)}};
}

} // namespace GBinder
