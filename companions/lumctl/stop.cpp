// SPDX-License-Identifier: BSD-3-Clause
#include "apprequest.h"
#include "client/shownname.h"
#include "command.h"

namespace {

QString summary()
{
    return qtTrId("lumctl-stop-summary");
}

ExitCode run(Session &session)
{
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    return requestOfApp(session, named->app, &LumdClient::stopApp,
        qtTrId("lumctl-stop-done").arg(shownName(named->app.name())));
}

} // namespace

const Command stopCommand = {"stop", summary, "NAME", 1, 1, usualTimeLimit, addExactOption, run};
