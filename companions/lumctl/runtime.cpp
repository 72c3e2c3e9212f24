// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "session.h"

namespace {

QString runtimeSummary()
{
    return qtTrId("lumctl-runtime-summary");
}

void addRuntimeOptions(QCommandLineParser &parser)
{
    parser.addOption({QStringLiteral("no-wait"), qtTrId("lumctl-option-no-wait")});
}

ExitCode report(Session &session, const char *key, const QJsonValue &value, const QString &text)
{
    session.output.document({{QLatin1String(key), value}});
    session.output.line(text);
    return ExitCode::Success;
}

ExitCode reportState(Session &session, const QString &state)
{
    return report(
        session, "runtimeState", state, qtTrId("lumctl-runtime-state").arg(shownName(state)));
}

/// Follows the unit on its way to "active", or to where it does not run.
class Progress
{
public:
    Progress(Session &session, bool run) : m_run(run)
    {
        QObject::connect(&session.client, &LumdClient::stateChanged, &session,
            [this, &session](const DaemonState &state) {
                m_hasMoved = m_hasMoved || (!m_state.isNull() && state.runtimeState != m_state);
                m_state = state.runtimeState;
                session.wake();
            });
    }

    QString state() const { return m_state; }
    bool isThere() const { return m_run ? is("active") : is("inactive") || is("failed"); }
    /// Where it was told to go, or, after it has been on the way, at rest somewhere else.
    bool isOver() const
    {
        return isThere() || (m_hasMoved && (is("inactive") || is("failed") || is("active")));
    }

private:
    bool is(const char *state) const { return m_state == QLatin1String(state); }

    const bool m_run;
    bool m_hasMoved = false;
    QString m_state;
};

ExitCode switchRuntime(Session &session, bool run)
{
    Progress progress(session, run);
    const ExitCode watched = session.watch();
    if (watched != ExitCode::Success)
        return watched;
    const auto answer = session.ask<Nothing>(&LumdClient::runRuntime, run);
    if (answer.error)
        return session.fail(answer.error);
    if (session.options.isSet(QStringLiteral("no-wait")))
        return report(session, "result", QStringLiteral("accepted"),
            run ? qtTrId("lumctl-runtime-starting") : qtTrId("lumctl-runtime-stopping"));
    session.output.progress(
        run ? qtTrId("lumctl-runtime-starting") : qtTrId("lumctl-runtime-stopping"));
    switch (session.wait([&progress] { return progress.isOver(); })) {
    case Session::End::Reached:
        break;
    case Session::End::TimedOut:
        return session.fail(ExitCode::TimedOut, "timed-out",
            qtTrId("lumctl-runtime-timed-out").arg(shownName(progress.state())));
    default:
        return session.fail({ClientError::Kind::NoDaemon, {}});
    }
    if (!progress.isThere())
        return session.fail(ExitCode::Failed, "failed",
            qtTrId("lumctl-runtime-state").arg(shownName(progress.state())));
    return reportState(session, progress.state());
}

ExitCode setOnBoot(Session &session, bool enable)
{
    const auto answer = session.ask<Nothing>(&LumdClient::setRuntimeOnBoot, enable);
    if (answer.error)
        return session.fail(answer.error);
    return report(session, "startOnBoot", enable,
        enable ? qtTrId("lumctl-runtime-enabled") : qtTrId("lumctl-runtime-disabled"));
}

ExitCode showStatus(Session &session)
{
    const auto state = session.ask<DaemonState>(&LumdClient::fetchState);
    if (state.error)
        return session.fail(state.error);
    const auto onBoot = session.ask<bool>(&LumdClient::fetchRuntimeOnBoot);
    session.output.document({{QStringLiteral("runtimeState"), state.value.runtimeState},
        {QStringLiteral("startOnBoot"), onBoot.error ? QJsonValue() : QJsonValue(onBoot.value)}});
    QString shown = qtTrId("lumctl-unknown");
    if (!onBoot.error)
        shown = onBoot.value ? qtTrId("lumctl-on") : qtTrId("lumctl-off");
    session.output.fields({{qtTrId("lumctl-status-runtime"), shownName(state.value.runtimeState)},
        {qtTrId("lumctl-info-boot"), shown}});
    return ExitCode::Success;
}

ExitCode runRuntime(Session &session)
{
    const QString word = session.arguments.first();
    if (word == QLatin1String("start") || word == QLatin1String("stop"))
        return switchRuntime(session, word == QLatin1String("start"));
    if (word == QLatin1String("enable") || word == QLatin1String("disable"))
        return setOnBoot(session, word == QLatin1String("enable"));
    if (word == QLatin1String("status"))
        return showStatus(session);
    return session.misused(qtTrId("lumctl-runtime-usage"));
}

} // namespace

const Command runtimeCommand = {"runtime", runtimeSummary, "start|stop|enable|disable|status", 1, 1,
    usualTimeLimit, addRuntimeOptions, runRuntime};
