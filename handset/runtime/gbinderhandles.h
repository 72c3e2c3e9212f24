// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gbinder.h>

#include <memory>

/// Gives a reference of libgbinder's back.
struct GBinderRelease
{
    void operator()(GBinderServiceManager *manager) const { gbinder_servicemanager_unref(manager); }
    void operator()(GBinderRemoteObject *object) const { gbinder_remote_object_unref(object); }
    void operator()(GBinderClient *client) const { gbinder_client_unref(client); }
    void operator()(GBinderLocalRequest *request) const { gbinder_local_request_unref(request); }
    void operator()(GBinderRemoteRequest *request) const { gbinder_remote_request_unref(request); }
    void operator()(GBinderLocalReply *reply) const { gbinder_local_reply_unref(reply); }
    /// Dropped, so that a call under way finds nobody any more.
    void operator()(GBinderLocalObject *object) const { gbinder_local_object_drop(object); }
};

using ServiceManagerPointer = std::unique_ptr<GBinderServiceManager, GBinderRelease>;
using RemoteObjectPointer = std::unique_ptr<GBinderRemoteObject, GBinderRelease>;
using ClientPointer = std::unique_ptr<GBinderClient, GBinderRelease>;
using LocalRequestPointer = std::unique_ptr<GBinderLocalRequest, GBinderRelease>;
using LocalReplyPointer = std::unique_ptr<GBinderLocalReply, GBinderRelease>;
using LocalObjectPointer = std::unique_ptr<GBinderLocalObject, GBinderRelease>;
