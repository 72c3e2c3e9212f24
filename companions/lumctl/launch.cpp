// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "launchrequest.h"

namespace {

QString launchSummary()
{
    return qtTrId("lumctl-launch-summary");
}

/// The class of the launcher that was named, when the app has others too.
QString namedClass(const NamedApp &named)
{
    if (named.launcher < 0 || named.app.launchers.size() < 2)
        return {};
    return named.app.launchers.at(named.launcher).className();
}

ExitCode runLaunch(Session &session)
{
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    const QString className = namedClass(*named);
    const QString name =
        className.isEmpty() ? named->app.name() : named->app.launchers.at(named->launcher).name;
    const QString text = qtTrId("lumctl-launch-done").arg(shownName(name));
    const QString &package = named->app.package;
    if (className.isEmpty())
        return requestLaunch(session, package, text, [&session, &package] {
            return session.ask<Nothing>(&LumdClient::launchApp, package).error;
        });
    // As the launcher's own desktop entry does.
    AndroidIntent intent;
    intent.action = QStringLiteral("android.intent.action.MAIN");
    intent.package = package;
    intent.className = className;
    intent.category = QStringLiteral("android.intent.category.LAUNCHER");
    return requestIntent(session, intent, text);
}

} // namespace

const Command launchCommand = {
    "launch", launchSummary, "NAME", 1, 1, usualTimeLimit, addExactOption, runLaunch};
