// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "session.h"

namespace {

QString autostartSummary()
{
    return qtTrId("lumctl-autostart-summary");
}

ExitCode runAutostart(Session &session)
{
    const QString word = session.arguments.last();
    const bool isOn = word == QLatin1String("on");
    if (!isOn && word != QLatin1String("off"))
        return session.misused(qtTrId("lumctl-autostart-usage"));
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    const ExitCode runtime = session.requireRuntime();
    if (runtime != ExitCode::Success)
        return runtime;
    const QString &package = named->app.package;
    const QString name = shownName(named->app.name());
    const auto change = session.ask<Nothing>(&LumdClient::setStartOnBoot, package, isOn);
    if (change.error)
        return session.fail(change.error);
    // The call itself does not tell whether Android did as asked.
    const auto now = session.ask<bool>(&LumdClient::fetchStartOnBoot, package);
    if (now.error)
        return session.fail(now.error);
    if (now.value != isOn)
        return session.fail(
            ExitCode::Failed, "unchanged", qtTrId("lumctl-autostart-unchanged").arg(name));
    session.output.document(
        {{QStringLiteral("package"), package}, {QStringLiteral("startOnBoot"), isOn}});
    session.output.line(
        (isOn ? qtTrId("lumctl-autostart-on") : qtTrId("lumctl-autostart-off")).arg(name));
    return ExitCode::Success;
}

} // namespace

const Command autostartCommand = {"autostart", autostartSummary, "NAME on|off", 2, 2,
    usualTimeLimit, addExactOption, runAutostart};
