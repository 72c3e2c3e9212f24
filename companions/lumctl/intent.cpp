// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "intentextra.h"
#include "launchrequest.h"

namespace {

QString intentSummary()
{
    return qtTrId("lumctl-intent-summary");
}

void addIntentOptions(QCommandLineParser &parser)
{
    const QString word = QStringLiteral("TEXT");
    parser.addOption({QStringLiteral("action"), qtTrId("lumctl-option-action"), word});
    parser.addOption({QStringLiteral("data"), qtTrId("lumctl-option-data"), QStringLiteral("URL")});
    parser.addOption(
        {QStringLiteral("type"), qtTrId("lumctl-option-type"), QStringLiteral("MIME")});
    parser.addOption({QStringLiteral("package"), qtTrId("lumctl-option-package"), word});
    parser.addOption({QStringLiteral("class"), qtTrId("lumctl-option-class"), word});
    parser.addOption({QStringLiteral("category"), qtTrId("lumctl-option-category"), word});
    parser.addOption(
        {QStringLiteral("extra"), qtTrId("lumctl-option-extra"), QStringLiteral("TYPE:KEY=VALUE")});
}

ExitCode runIntent(Session &session)
{
    const QCommandLineParser &options = session.options;
    AndroidIntent intent;
    intent.action = options.value(QStringLiteral("action"));
    intent.data = options.value(QStringLiteral("data"));
    intent.type = options.value(QStringLiteral("type"));
    intent.package = options.value(QStringLiteral("package"));
    intent.className = options.value(QStringLiteral("class"));
    intent.category = options.value(QStringLiteral("category"));
    if (intent.action.isEmpty())
        return session.misused(qtTrId("lumctl-intent-no-action"));
    if (!intent.className.isEmpty() && intent.package.isEmpty())
        return session.misused(qtTrId("lumctl-intent-class-alone"));
    const QStringList texts = options.values(QStringLiteral("extra"));
    for (const QString &text : texts) {
        const auto extra = parseExtra(text);
        if (!extra)
            return session.misused(qtTrId("lumctl-intent-bad-extra").arg(shownName(text)));
        intent.extras.insert(extra->key, extra->value);
    }
    return requestIntent(
        session, intent, qtTrId("lumctl-intent-done").arg(shownName(intent.action)));
}

} // namespace

const Command intentCommand = {
    "intent", intentSummary, "", 0, 0, usualTimeLimit, addIntentOptions, runIntent};
