// SPDX-License-Identifier: BSD-3-Clause
#include "command.h"
#include "launchrequest.h"

namespace {

QString licencesSummary()
{
    return qtTrId("lumctl-licences-summary");
}

ExitCode runLicences(Session &session)
{
    return requestLaunch(session, QStringLiteral("android.settings.LEGAL_INFO"),
        qtTrId("lumctl-licences-done"),
        [&session] { return session.ask<Nothing>(&LumdClient::showLicences).error; });
}

} // namespace

const Command licencesCommand = {
    "licences", licencesSummary, "", 0, 0, usualTimeLimit, nullptr, runLicences};
