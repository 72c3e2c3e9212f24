// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "session.h"

namespace {

QString statusSummary()
{
    return qtTrId("lumctl-status-summary");
}

ExitCode runStatus(Session &session)
{
    const auto answer = session.ask<DaemonState>(&LumdClient::fetchState);
    if (answer.error)
        return session.fail(answer.error);
    const DaemonState &state = answer.value;
    session.output.document({{QStringLiteral("runtimeState"), state.runtimeState},
        {QStringLiteral("ready"), state.isReady},
        {QStringLiteral("pendingChanges"), int(state.pendingChanges)},
        {QStringLiteral("pendingLaunches"), int(state.pendingLaunches)},
        {QStringLiteral("sdkLevel"), state.sdkLevel}, {QStringLiteral("version"), state.version}});
    session.output.fields({
        {qtTrId("lumctl-status-runtime"), shownName(state.runtimeState)},
        {qtTrId("lumctl-status-changes"),
            state.isReady ? qtTrId("lumctl-status-ready") : qtTrId("lumctl-status-not-ready")},
        {qtTrId("lumctl-status-pending-changes"), QString::number(state.pendingChanges)},
        {qtTrId("lumctl-status-pending-launches"), QString::number(state.pendingLaunches)},
        {qtTrId("lumctl-status-level"),
            state.sdkLevel == 0 ? qtTrId("lumctl-unknown") : QString::number(state.sdkLevel)},
        {qtTrId("lumctl-status-version"), shownName(state.version)},
    });
    return ExitCode::Success;
}

} // namespace

const Command statusCommand = {
    "status", statusSummary, "", 0, 0, usualTimeLimit, nullptr, runStatus};
