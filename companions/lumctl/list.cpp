// SPDX-License-Identifier: BSD-3-Clause
#include "appdocument.h"
#include "client/shownname.h"
#include "command.h"
#include "session.h"

#include <QJsonArray>

#include <algorithm>

namespace {

QString listSummary()
{
    return qtTrId("lumctl-list-summary");
}

ExitCode runList(Session &session)
{
    auto answer = session.ask<QVector<AndroidApp>>(&LumdClient::listApps);
    if (answer.error)
        return session.fail(answer.error);
    QVector<AndroidApp> &apps = answer.value;
    std::sort(apps.begin(), apps.end(),
        [](const AndroidApp &one, const AndroidApp &other) { return one.package < other.package; });
    QJsonArray documents;
    QVector<QStringList> rows;
    for (const AndroidApp &app : qAsConst(apps)) {
        documents.append(appDocument(app));
        for (const AndroidLauncher &launcher : app.launchers)
            rows.append(
                {shownName(app.package), shownName(launcher.version), shownName(launcher.name)});
    }
    session.output.document({{QStringLiteral("apps"), documents}});
    if (!rows.isEmpty())
        session.output.table({qtTrId("lumctl-list-package"), qtTrId("lumctl-list-version"),
                                 qtTrId("lumctl-list-name")},
            rows);
    else if (session.output.isTerminal())
        session.output.line(qtTrId("lumctl-list-empty"));
    return ExitCode::Success;
}

} // namespace

const Command listCommand = {"list", listSummary, "", 0, 0, usualTimeLimit, nullptr, runList};
