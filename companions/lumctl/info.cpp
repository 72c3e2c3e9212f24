// SPDX-License-Identifier: BSD-3-Clause
#include "appdocument.h"
#include "client/shownname.h"
#include "command.h"
#include "session.h"

#include <QLocale>

#include <optional>

namespace {

/// What only Android knows; nothing while the runtime is down or does not tell.
struct Details
{
    std::optional<AppSize> size;
    std::optional<bool> isStartedOnBoot;
};

QString infoSummary()
{
    return qtTrId("lumctl-info-summary");
}

ClientError fetchDetails(Session &session, const QString &package, Details &details)
{
    const auto state = session.ask<DaemonState>(&LumdClient::fetchState);
    if (state.error || !state.value.isRuntimeUp())
        return state.error;
    const auto size = session.ask<AppSize>(&LumdClient::fetchSize, package);
    if (size.error)
        return size.error;
    if (size.value.isKnown())
        details.size = size.value;
    const auto isStarted = session.ask<bool>(&LumdClient::fetchStartOnBoot, package);
    if (!isStarted.error)
        details.isStartedOnBoot = isStarted.value;
    return isStarted.error;
}

QJsonObject documentOf(const AndroidApp &app, const Details &details)
{
    QJsonObject document = appDocument(app);
    QJsonValue size;
    if (details.size)
        size = QJsonObject{{QStringLiteral("code"), details.size->code},
            {QStringLiteral("data"), details.size->data},
            {QStringLiteral("cache"), details.size->cache}};
    document.insert(QStringLiteral("size"), size);
    document.insert(QStringLiteral("startOnBoot"),
        details.isStartedOnBoot ? QJsonValue(*details.isStartedOnBoot) : QJsonValue());
    return document;
}

QString bytes(const std::optional<AppSize> &size, qint64 AppSize::*part)
{
    return size ? QLocale().formattedDataSize(*size.*part) : qtTrId("lumctl-unknown");
}

QString onOrOff(const std::optional<bool> &isOn)
{
    if (!isOn)
        return qtTrId("lumctl-unknown");
    return *isOn ? qtTrId("lumctl-on") : qtTrId("lumctl-off");
}

ExitCode runInfo(Session &session)
{
    const auto named = session.findNamed(session.arguments.first());
    if (!named)
        return session.failure();
    const AndroidApp &app = named->app;
    Details details;
    const ClientError error = fetchDetails(session, app.package, details);
    if (error)
        return session.fail(error);

    session.output.document(documentOf(app, details));
    QVector<QStringList> rows = {{qtTrId("lumctl-info-package"), shownName(app.package)},
        {qtTrId("lumctl-info-version"), shownName(app.version())}};
    for (const AndroidLauncher &launcher : app.launchers) {
        rows.append({qtTrId("lumctl-info-launcher"), shownName(launcher.name)});
        rows.append({qtTrId("lumctl-info-desktop-file"), shownName(launcher.desktopFile)});
        rows.append({qtTrId("lumctl-info-hidden"),
            launcher.isHidden ? qtTrId("lumctl-yes") : qtTrId("lumctl-no")});
    }
    rows.append({qtTrId("lumctl-info-code"), bytes(details.size, &AppSize::code)});
    rows.append({qtTrId("lumctl-info-data"), bytes(details.size, &AppSize::data)});
    rows.append({qtTrId("lumctl-info-cache"), bytes(details.size, &AppSize::cache)});
    rows.append({qtTrId("lumctl-info-boot"), onOrOff(details.isStartedOnBoot)});
    session.output.fields(rows);
    return ExitCode::Success;
}

} // namespace

const Command infoCommand = {
    "info", infoSummary, "NAME", 1, 1, usualTimeLimit, addExactOption, runInfo};
