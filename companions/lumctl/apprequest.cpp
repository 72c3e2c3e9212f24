// SPDX-License-Identifier: BSD-3-Clause
#include "apprequest.h"

ExitCode requestOfApp(
    Session &session, const AndroidApp &app, AppOperation operation, const QString &text)
{
    const ExitCode runtime = session.requireRuntime();
    if (runtime != ExitCode::Success)
        return runtime;
    const auto answer = session.ask<Nothing>(operation, app.package);
    if (answer.error)
        return session.fail(answer.error);
    session.output.document({{QStringLiteral("package"), app.package},
        {QStringLiteral("result"), QStringLiteral("accepted")}});
    session.output.line(text);
    return ExitCode::Success;
}
