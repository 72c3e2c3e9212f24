// SPDX-License-Identifier: BSD-3-Clause
#include "bench/localcall.h"

namespace {

constexpr char interfaceName[] = "bench.ICalls";
constexpr char serviceName[] = "bench";

GBinderLocalReply *onCall(GBinderLocalObject *object, GBinderRemoteRequest *request, guint code,
    guint flags, int *status, void *handler)
{
    Q_UNUSED(code)
    Q_UNUSED(flags)
    Q_UNUSED(status)
    return (*static_cast<LocalCall::Handler *>(handler))(object, request);
}

} // namespace

FakeBinder::Answer LocalCall::run(const QByteArray &payload, Handler handler)
{
    GBinderServiceManager *const manager = gbinder_servicemanager_new("/dev/puddlejumper");
    GBinderLocalObject *const object =
        gbinder_servicemanager_new_local_object(manager, interfaceName, onCall, &handler);
    GBinderServiceName *const name = gbinder_servicename_new(manager, object, serviceName);

    FakeBinder::Call call;
    call.code = 1;
    call.interface = QString::fromLatin1(interfaceName);
    call.payload = payload;
    const FakeBinder::Answer answer = FakeBinder::transact(QString::fromLatin1(serviceName), call);
    if (!answer.delivered)
        qFatal("the call did not arrive");

    gbinder_servicename_unref(name);
    gbinder_local_object_drop(object);
    gbinder_servicemanager_unref(manager);
    return answer;
}
