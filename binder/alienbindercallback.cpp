// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindercallback.h"

#include "binder/localrequest.h"

AlienBinderCallback::AlienBinderCallback(GBinderServiceManager *manager, const char *interface,
    AlienBinderRequestHandler *handler, QObject *parent)
    : QObject(parent),
      m_localObject(gbinder_servicemanager_new_local_object(
          manager, interface, &AlienBinderCallback::transact, this)),
      m_handler(handler)
{
}

void AlienBinderCallback::onConnectionChanged(bool connected)
{
    if (!connected)
        m_localObject.reset();
}

GBinderLocalReply *AlienBinderCallback::transact(GBinderLocalObject *object,
    GBinderRemoteRequest *request, guint code, guint flags, int *status, void *callback)
{
    auto *const handler = static_cast<AlienBinderCallback *>(callback)->m_handler;
    return handleLocalRequest(object, request, flags, status,
        [handler, code](AlienBinderParcel *in, AlienBinderParcel *out) {
            return handler->processRequest(code, in, out);
        });
}
