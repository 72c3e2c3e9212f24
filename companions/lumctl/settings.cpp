// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "launchrequest.h"

namespace {

QString settingsSummary()
{
    return qtTrId("lumctl-settings-summary");
}

ExitCode runSettings(Session &session)
{
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    const QString &package = named->app.package;
    return requestLaunch(session, QStringLiteral("package:") + package,
        qtTrId("lumctl-settings-done").arg(shownName(named->app.name())), [&session, &package] {
            return session.ask<Nothing>(&LumdClient::openSettings, package).error;
        });
}

} // namespace

const Command settingsCommand = {
    "settings", settingsSummary, "NAME", 1, 1, usualTimeLimit, addExactOption, runSettings};
