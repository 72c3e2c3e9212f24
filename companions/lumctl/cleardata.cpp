// SPDX-License-Identifier: BSD-3-Clause
#include "apprequest.h"
#include "client/shownname.h"
#include "command.h"

#include <cstdio>

#include <unistd.h>

namespace {

const QLatin1String yesOption("yes");

QString clearDataSummary()
{
    return qtTrId("lumctl-clear-data-summary");
}

void addClearDataOptions(QCommandLineParser &parser)
{
    addExactOption(parser);
    parser.addOption({yesOption, qtTrId("lumctl-option-yes")});
}

bool isConfirmed(const QString &question)
{
    const QByteArray bytes = question.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
    char answer[16] = {};
    if (std::fgets(answer, sizeof(answer), stdin) == nullptr)
        return false;
    const QString word = QString::fromUtf8(answer).trimmed().toLower();
    return word == qtTrId("lumctl-answer-y") || word == qtTrId("lumctl-answer-yes");
}

ExitCode runClearData(Session &session)
{
    const bool isSure = session.options.isSet(yesOption);
    const bool canAsk = isatty(STDIN_FILENO) != 0 && session.output.isTerminal();
    if (!isSure && (!canAsk || session.output.isJson()))
        return session.misused(qtTrId("lumctl-clear-data-needs-yes"));
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    const QString name = shownName(named->app.name());
    if (!isSure
        && !isConfirmed(
            qtTrId("lumctl-clear-data-question").arg(name, shownName(named->app.package))))
        return session.fail(ExitCode::Failed, "not-confirmed", qtTrId("lumctl-clear-data-kept"));
    return requestOfApp(
        session, named->app, &LumdClient::clearData, qtTrId("lumctl-clear-data-done").arg(name));
}

} // namespace

const Command clearDataCommand = {"clear-data", clearDataSummary, "NAME", 1, 1, usualTimeLimit,
    addClearDataOptions, runClearData};
