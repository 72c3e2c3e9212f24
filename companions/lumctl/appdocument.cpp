// SPDX-License-Identifier: BSD-3-Clause
#include "appdocument.h"

#include <QJsonArray>

QJsonObject appDocument(const AndroidApp &app)
{
    QJsonArray launchers;
    for (const AndroidLauncher &launcher : app.launchers)
        launchers.append(QJsonObject{{QStringLiteral("desktopFile"), launcher.desktopFile},
            {QStringLiteral("name"), launcher.name}, {QStringLiteral("icon"), launcher.icon},
            {QStringLiteral("version"), launcher.version},
            {QStringLiteral("hidden"), launcher.isHidden}});
    return {{QStringLiteral("package"), app.package}, {QStringLiteral("name"), app.name()},
        {QStringLiteral("version"), app.version()}, {QStringLiteral("launchers"), launchers}};
}
