// SPDX-License-Identifier: BSD-3-Clause
// Who may do what: the checks of a caller's identity and of the device's policy.
#include "daemon/caller.h"
#include "daemon/lumdaemon.h"

#include <policyvalue.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

namespace {

// The number of the setting that lets everybody change apps, in the policy library's list.
constexpr int appChangesPolicy = 6;

} // namespace

std::optional<Caller> LumDaemon::caller() const
{
    if (!calledFromDBus())
        return std::nullopt;
    // Its name on the bus is never given to another connection.
    const QString name = message().service();
    QDBusConnectionInterface *const bus = connection().interface();
    const ProcessOwner process = ProcessOwner::ofProcess(bus->servicePid(name).value());
    const QDBusMessage reply = bus->call(QStringLiteral("GetConnectionCredentials"), name);
    return Caller{process, BusCredentials::fromReply(reply)};
}

bool LumDaemon::isPackageChangeAllowed(const std::optional<Caller> &caller)
{
    return !caller || caller->isPrivileged()
        || Quillfin::PolicyValue::keyValue(appChangesPolicy).toBool();
}
