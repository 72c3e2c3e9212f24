// SPDX-License-Identifier: BSD-3-Clause
#include "apprequest.h"
#include "client/shownname.h"
#include "command.h"

namespace {

QString clearCacheSummary()
{
    return qtTrId("lumctl-clear-cache-summary");
}

ExitCode runClearCache(Session &session)
{
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    return requestOfApp(session, named->app, &LumdClient::clearCache,
        qtTrId("lumctl-clear-cache-done").arg(shownName(named->app.name())));
}

} // namespace

const Command clearCacheCommand = {
    "clear-cache", clearCacheSummary, "NAME", 1, 1, usualTimeLimit, addExactOption, runClearCache};
