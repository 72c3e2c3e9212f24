// SPDX-License-Identifier: BSD-3-Clause
#include "apprequest.h"
#include "client/shownname.h"
#include "command.h"

namespace {

QString stopSummary()
{
    return qtTrId("lumctl-stop-summary");
}

ExitCode runStop(Session &session)
{
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    return requestOfApp(session, named->app, &LumdClient::stopApp,
        qtTrId("lumctl-stop-done").arg(shownName(named->app.name())));
}

} // namespace

const Command stopCommand = {
    "stop", stopSummary, "NAME", 1, 1, usualTimeLimit, addExactOption, runStop};
