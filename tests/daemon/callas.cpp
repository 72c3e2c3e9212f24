// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/callas.h"

#include "tests/daemon/daemonfixture.h"
#include "tests/support/childprocess.h"
#include "tests/support/mounts.h"
#include "tests/support/systemcalls.h"

namespace {

constexpr uint ordinaryId = 12345;

uint idOf(const QString &name)
{
    if (!SystemCalls::hasUser(ordinaryId) || name == QLatin1String("root"))
        return 0;
    return name == QLatin1String("disk") ? 6 : ordinaryId;
}

void makeKnown(const Identity &identity)
{
    QByteArray users = "root:x:0:0::/:/bin/sh\n";
    QByteArray groups = "root:x:0:\n";
    if (idOf(identity.owner) == 0)
        users.clear();
    if (idOf(identity.group) == 0)
        groups.clear();
    else if (identity.group != QLatin1String("disk"))
        groups += "disk:x:6:\n";
    const auto line = [](const QString &name) {
        return name.toUtf8() + ":x:" + QByteArray::number(idOf(name));
    };
    makeFile(QStringLiteral("/run/users"), users + line(identity.owner) + ":0::/:/bin/sh\n");
    makeFile(QStringLiteral("/run/groups"), groups + line(identity.group) + ":\n");
}

} // namespace

Identity ordinary()
{
    return {QStringLiteral("nemo"), QStringLiteral("nemo")};
}

QString plain()
{
    return QStringLiteral("plain");
}

QString becoming(const Identity &later)
{
    return QStringLiteral("becoming:%1:%2").arg(idOf(later.owner)).arg(idOf(later.group));
}

void replaceUsersAndGroups()
{
    makeFile(QStringLiteral("/run/users"));
    makeFile(QStringLiteral("/run/groups"));
    Mounts::bind(QStringLiteral("/run/users"), QStringLiteral("/etc/passwd"));
    Mounts::bind(QStringLiteral("/run/groups"), QStringLiteral("/etc/group"));
}

QString callAs(const Identity &identity, const QString &manner, const QString &method,
    const QStringList &arguments)
{
    makeKnown(identity);
    ChildProcess caller;
    caller.start(QStringLiteral(CALLER_PROGRAM),
        QStringList({QString::number(idOf(identity.owner)), QString::number(idOf(identity.group)),
            manner, method})
            + arguments,
        {}, ChildProcess::Collect::Output);
    if (!caller.waitForExit() || caller.exitCode() != 0)
        return QStringLiteral("the caller failed");
    return caller.lines().join(QLatin1Char('\n'));
}
