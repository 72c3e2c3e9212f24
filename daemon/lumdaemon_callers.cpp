// SPDX-License-Identifier: BSD-3-Clause
// Who may do what: the checks of a caller's identity and of the device's policy.
#include "daemon/lumdaemon.h"

#include <policyvalue.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFileInfo>

namespace {

// The number of the setting that lets everybody change apps, in the policy library's list.
constexpr int appChangesPolicy = 6;

} // namespace

bool LumDaemon::isPrivilegedCaller() const
{
    if (!calledFromDBus())
        return true;
    const uint pid = connection().interface()->servicePid(message().service()).value();
    // The process's folder belongs to its effective user and group.
    const QFileInfo process(QStringLiteral("/proc/%1").arg(pid));
    const QString group = process.group();
    return group == QLatin1String("privileged") || group == QLatin1String("disk")
        || process.owner() == QLatin1String("root");
}

bool LumDaemon::isPackageChangeAllowed() const
{
    return isPrivilegedCaller() || Quillfin::PolicyValue::keyValue(appChangesPolicy).toBool();
}
