// SPDX-License-Identifier: BSD-3-Clause
// What the shells complete the name of an app with.
#include "client/shownname.h"
#include "command.h"
#include "session.h"

#include <QSet>

namespace {

/// Whether a person would want to have it completed, and finds its app by it.
bool isCompletable(const QString &name)
{
    constexpr int longest = 100;
    return !name.isEmpty() && name.size() <= longest && shownName(name) == name;
}

ExitCode runCompleteNames(Session &session)
{
    const auto answer = session.ask<QVector<AndroidApp>>(&LumdClient::listApps);
    // Somebody is typing: an error would only be in the way.
    if (answer.error)
        return ExitCode::Success;
    QSet<QString> names;
    for (const AndroidApp &app : answer.value) {
        names.insert(app.package);
        for (const AndroidLauncher &launcher : app.launchers)
            names.insert(launcher.name);
    }
    QStringList sorted;
    std::copy_if(names.cbegin(), names.cend(), std::back_inserter(sorted), isCompletable);
    sorted.sort();
    for (const QString &name : qAsConst(sorted))
        session.output.line(name);
    return ExitCode::Success;
}

} // namespace

const Command completeNamesCommand = {
    "complete-names", nullptr, "", 0, 0, usualTimeLimit, nullptr, runCompleteNames};
