// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "launchrequest.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <QUrl>

namespace {

const QLatin1String packageOption("package");

QString openSummary()
{
    return qtTrId("lumctl-open-summary");
}

void addOpenOptions(QCommandLineParser &parser)
{
    addExactOption(parser);
    parser.addOption({packageOption, qtTrId("lumctl-option-open-package"), QStringLiteral("NAME")});
}

/// Whether it is a URL of something else than a file; a file of that name goes first.
bool isRemote(const QString &argument)
{
    const QUrl url(argument);
    return !QFileInfo::exists(argument) && url.isValid() && !url.isRelative() && !url.isLocalFile();
}

ExitCode runOpen(Session &session)
{
    const QString &argument = session.arguments.first();
    AndroidIntent intent;
    intent.action = QStringLiteral("android.intent.action.VIEW");
    if (isRemote(argument)) {
        intent.data = argument;
    } else {
        const QUrl url(argument);
        const QFileInfo file(url.isLocalFile() ? url.toLocalFile() : argument);
        if (!file.exists() || file.isDir())
            return session.fail(ExitCode::Failed, "no-such-file",
                qtTrId("lumctl-open-no-file").arg(shownName(argument)));
        intent.data = file.absoluteFilePath();
        intent.type = QMimeDatabase().mimeTypeForFile(file).name();
    }
    if (session.options.isSet(packageOption)) {
        const auto named = session.findNamed(session.options.value(packageOption));
        if (!named)
            return session.failure();
        intent.package = named->app.package;
    }
    return requestIntent(session, intent, qtTrId("lumctl-open-done").arg(shownName(argument)));
}

} // namespace

const Command openCommand = {
    "open", openSummary, "URL|FILE", 1, 1, usualTimeLimit, addOpenOptions, runOpen};
