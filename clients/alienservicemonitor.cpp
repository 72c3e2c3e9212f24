// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienservicemonitor.h"

#include "clients/clientcall.h"

namespace {

// alien.applications.IAlienService
constexpr quint32 launchPackageCode = 1;
constexpr quint32 installPackageCode = 2;

} // namespace

AlienServiceMonitor *AlienServiceMonitor::instance()
{
    static auto *const monitor = new AlienServiceMonitor;
    return monitor;
}

AlienServiceMonitor::AlienServiceMonitor()
    : AlienBinderConnection("alien", "alien.applications.IAlienService", true, nullptr)
{
}

void AlienServiceMonitor::launchPackage(const QString &packageName)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    call.transact(launchPackageCode);
}

bool AlienServiceMonitor::installPackage(const QString &path, GBinderLocalObject *observer)
{
    ClientCall call(client());
    call.parcel().writeString(path);
    call.parcel().writeLocalObject(observer);
    qint32 accepted = 0;
    if (GBinderRemoteReply *const reply = call.transact(installPackageCode))
        gbinder_remote_reply_read_int32(reply, &accepted);
    return accepted != 0;
}
