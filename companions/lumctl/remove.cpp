// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "packagechanges.h"
#include "session.h"

namespace {

QString removeSummary()
{
    return qtTrId("lumctl-remove-summary");
}

void addRemoveOptions(QCommandLineParser &parser)
{
    addExactOption(parser);
    PackageChanges::addOptions(parser);
}

ExitCode runRemove(Session &session)
{
    // Nothing is removed while one of the names is not clear.
    QVector<AndroidApp> apps;
    for (const QString &argument : session.arguments) {
        const auto named = session.findNamed(argument);
        if (!named)
            return session.failure();
        apps.append(named->app);
    }
    PackageChanges changes(session,
        {"remove", "removed", qtTrId("lumctl-remove-done"), qtTrId("lumctl-remove-failed"),
            qtTrId("lumctl-remove-failed"), qtTrId("lumctl-remove-under-way"),
            qtTrId("lumctl-remove-refused")},
        &LumdClient::removeApp);
    changes.setRefusal(ExitCode::Refused);
    QString package;
    QObject::connect(&session.client, &LumdClient::removeFinished, &changes,
        [&changes, &package](const QString &removed, bool success) {
            if (removed == package)
                changes.onResult(package, success, {});
        });
    session.catchInterrupts();
    const ExitCode watched = session.watch();
    if (watched != ExitCode::Success)
        return watched;
    for (const AndroidApp &app : qAsConst(apps)) {
        package = app.package;
        changes.carryOut(package, shownName(app.name()));
    }
    return changes.finish();
}

} // namespace

const Command removeCommand = {
    "remove", removeSummary, "NAME...", 1, anyNumber, changeTimeLimit, addRemoveOptions, runRemove};
