// SPDX-License-Identifier: BSD-3-Clause
#include "binder/localrequest.h"

#include "binder/alienbinderparcel.h"

GBinderLocalReply *handleLocalRequest(GBinderLocalObject *object, GBinderRemoteRequest *request,
    quint32 flags, int *status, const LocalRequestProcessor &process)
{
    AlienBinderParcel in(request);
    if (flags & GBINDER_TX_FLAG_ONEWAY) {
        AlienBinderParcel none;
        *status = process(&in, &none) ? 0 : 1;
        return nullptr;
    }
    GBinderLocalReply *const reply = gbinder_local_object_new_reply(object);
    AlienBinderParcel out(reply);
    *status = process(&in, &out) ? 0 : 1;
    return reply;
}
