// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "packagechanges.h"
#include "session.h"

#include <QFileInfo>

#include <grp.h>
#include <unistd.h>

namespace {

QString installSummary()
{
    return qtTrId("lumctl-install-summary");
}

/// Why lumd could not take the file either, as far as that can be seen from here.
QString obstacle(const QFileInfo &file)
{
    if (!file.exists())
        return qtTrId("lumctl-install-no-file");
    if (!file.isFile())
        return qtTrId("lumctl-install-not-regular");
    if (!file.isReadable())
        return qtTrId("lumctl-install-not-readable");
    return {};
}

/// The callers whom lumd lets change apps whatever the device's policy says.
bool isPrivileged()
{
    if (geteuid() == 0)
        return true;
    const group *const own = getgrgid(getegid());
    const QByteArray name = own == nullptr ? QByteArray() : QByteArray(own->gr_name);
    return name == "privileged" || name == "disk";
}

ExitCode runInstall(Session &session)
{
    PackageChanges changes(session,
        {"install", "installed", qtTrId("lumctl-install-done"), qtTrId("lumctl-install-failed"),
            qtTrId("lumctl-install-failed-because"), qtTrId("lumctl-install-under-way"),
            isPrivileged() ? qtTrId("lumctl-install-not-taken") : qtTrId("lumctl-install-refused")},
        &LumdClient::installFile);
    if (!isPrivileged())
        changes.setRefusal(ExitCode::Refused);
    QObject::connect(
        &session.client, &LumdClient::installFinished, &changes, &PackageChanges::onResult);
    session.catchInterrupts();
    const ExitCode watched = session.watch();
    if (watched != ExitCode::Success)
        return watched;
    for (const QString &argument : session.arguments) {
        const QFileInfo file(argument);
        const QString why = obstacle(file);
        if (why.isEmpty())
            changes.carryOut(file.absoluteFilePath(), shownName(argument));
        else
            changes.noteFailure(
                file.absoluteFilePath(), QStringLiteral("%1: %2").arg(shownName(argument), why));
    }
    return changes.finish();
}

} // namespace

const Command installCommand = {"install", installSummary, "FILE...", 1, anyNumber, changeTimeLimit,
    PackageChanges::addOptions, runInstall};
