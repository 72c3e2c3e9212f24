// SPDX-License-Identifier: BSD-3-Clause
#include "launchrequest.h"

ExitCode requestLaunch(Session &session, const QString &what, const QString &text,
    const std::function<ClientError()> &ask)
{
    const ExitCode watched = session.watch();
    if (watched != ExitCode::Success)
        return watched;
    bool isQueued = false;
    QObject::connect(&session.client, &LumdClient::requestQueued, &session,
        [&isQueued, &what](const QString &kind, const QString &queued) {
            const bool isLaunch =
                kind == QLatin1String("launch") || kind == QLatin1String("intent");
            if (isLaunch && queued == what)
                isQueued = true;
        });
    const ClientError error = ask();
    if (error)
        return session.fail(error);
    session.output.document({{QStringLiteral("request"), what},
        {QStringLiteral("result"),
            isQueued ? QStringLiteral("queued") : QStringLiteral("accepted")}});
    session.output.line(isQueued ? qtTrId("lumctl-launch-queued").arg(text) : text);
    return ExitCode::Success;
}

ExitCode requestIntent(Session &session, const AndroidIntent &intent, const QString &text)
{
    return requestLaunch(
        session, intent.data.isEmpty() ? intent.action : intent.data, text, [&session, &intent] {
            return session.ask<Nothing>(&LumdClient::launchIntent, intent).error;
        });
}
