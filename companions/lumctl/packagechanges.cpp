// SPDX-License-Identifier: BSD-3-Clause
#include "packagechanges.h"

#include "client/shownname.h"

#include <QElapsedTimer>

PackageChanges::PackageChanges(Session &session, const ChangeWords &words, Request request)
    : m_session(session), m_words(words), m_request(request)
{
    connect(&session.client, &LumdClient::requestQueued, this, &PackageChanges::onQueued);
}

void PackageChanges::addOptions(QCommandLineParser &parser)
{
    parser.addOption({QStringLiteral("no-wait"), qtTrId("lumctl-option-no-wait")});
}

void PackageChanges::carryOut(const QString &what, const QString &shown)
{
    m_what = what;
    m_shown = shown;
    m_stage = Stage::Asked;
    m_package.clear();
    m_message.clear();
    if (m_isStopped) {
        note(m_code, "not-requested", qtTrId("lumctl-change-not-requested").arg(shown));
        return;
    }
    m_session.output.progress(m_words.underWay.arg(shown, QString::number(0)));
    const auto answer = m_session.ask<bool>(m_request, what);
    if (m_session.caughtSignal() == 0 && answer.error) {
        const ErrorReport report = reportOf(answer.error);
        stop(report.code, report.kind, QStringLiteral("%1: %2").arg(shown, report.text));
    } else if (m_session.caughtSignal() == 0 && !answer.value) {
        const char *const result = m_refusal == ExitCode::Refused ? "refused" : "failed";
        note(m_refusal, result, m_words.refused.arg(shown));
    } else if (!m_session.options.isSet(QStringLiteral("no-wait"))) {
        waitForResult(shown);
    } else if (m_stage == Stage::Queued) {
        note(ExitCode::Success, "queued", {});
    } else {
        note(ExitCode::Success, "accepted", qtTrId("lumctl-change-accepted").arg(shown));
    }
}

void PackageChanges::waitForResult(const QString &shown)
{
    QElapsedTimer elapsed;
    elapsed.start();
    const auto showProgress = [this, &elapsed, &shown] {
        constexpr int millisecondsInASecond = 1000;
        const QString text =
            m_stage == Stage::Queued ? qtTrId("lumctl-change-waits-for-runtime") : m_words.underWay;
        m_session.output.progress(
            text.arg(shown, QString::number(elapsed.elapsed() / millisecondsInASecond)));
    };
    const auto hasResult = [this] {
        return m_stage == Stage::Succeeded || m_stage == Stage::Failed;
    };
    switch (m_session.wait(hasResult, showProgress)) {
    case Session::End::Reached:
        if (m_stage == Stage::Succeeded)
            note(ExitCode::Success, m_words.success,
                m_words.succeeded.contains(QLatin1String("%2"))
                    ? m_words.succeeded.arg(shown, shownName(m_package))
                    : m_words.succeeded.arg(shown));
        else if (m_message.isEmpty())
            note(ExitCode::Failed, "failed", m_words.failed.arg(shown));
        else
            note(
                ExitCode::Failed, "failed", m_words.failedBecause.arg(shown, shownName(m_message)));
        break;
    case Session::End::Vanished:
        stop(ExitCode::NoDaemon, "no-lumd", qtTrId("lumctl-change-lumd-gone").arg(shown));
        break;
    case Session::End::TimedOut:
        stop(ExitCode::TimedOut, "timed-out",
            qtTrId("lumctl-change-timed-out").arg(shown, QString::number(m_session.limit.count())));
        break;
    case Session::End::Interrupted:
        stop(ExitCode::Failed, "interrupted", qtTrId("lumctl-change-interrupted").arg(shown));
        break;
    }
}

void PackageChanges::noteFailure(const QString &what, const QString &text)
{
    m_what = what;
    m_package.clear();
    m_message.clear();
    note(ExitCode::Failed, "failed", text);
}

void PackageChanges::onResult(const QString &package, bool success, const QString &message)
{
    m_package = package;
    m_message = message;
    m_stage = success ? Stage::Succeeded : Stage::Failed;
    m_session.wake();
}

void PackageChanges::onQueued(const QString &kind, const QString &what)
{
    if (kind != QLatin1String(m_words.request) || what != m_what)
        return;
    m_stage = Stage::Queued;
    m_session.output.line(qtTrId("lumctl-change-queued").arg(m_shown));
}

void PackageChanges::note(ExitCode code, const char *result, const QString &text)
{
    const QJsonObject document = {{QStringLiteral("request"), m_what},
        {QStringLiteral("result"), QLatin1String(result)}, {QStringLiteral("package"), m_package},
        {QStringLiteral("message"), m_message}};
    m_results.append(document);
    if (code != ExitCode::Success)
        m_session.output.error(text);
    else if (!text.isEmpty())
        m_session.output.line(text);
    if (m_code == ExitCode::Success)
        m_code = code;
}

void PackageChanges::stop(ExitCode code, const char *result, const QString &text)
{
    m_isStopped = true;
    note(code, result, text);
}

ExitCode PackageChanges::finish()
{
    m_session.output.document({{QStringLiteral("results"), m_results}});
    return m_code;
}
