// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/settingsentry.h"

#include "config/launchernames.h"
#include "launcher/fileoperations.h"
#include "launcher/logging.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr char pageSource[] =
    "/usr/share/tovra-settings/pages/apk-configuration/apkConfigurationPage.qml";

QJsonDocument settingsDocument(
    const QString &desktopPath, const QString &packageName, const QString &packageVersion)
{
    const QJsonObject properties{
        {QStringLiteral("packageName"), packageName},
        {QStringLiteral("packageVersion"), packageVersion},
    };
    const QJsonObject params{
        {QStringLiteral("properties"), properties},
        {QStringLiteral("source"), QLatin1String(pageSource)},
    };
    const QJsonObject entry{
        {QStringLiteral("params"), params},
        {QStringLiteral("path"),
            QString(QLatin1String("applications/") + QFileInfo(desktopPath).fileName())},
        {QStringLiteral("type"), QStringLiteral("page")},
    };
    return QJsonDocument(QJsonObject{{QStringLiteral("entries"), QJsonArray{entry}}});
}

} // namespace

void writeSettingsEntry(
    const QString &desktopPath, const QString &packageName, const QString &packageVersion)
{
    const QString path = settingsEntryPathFor(desktopPath);
    const QByteArray document = settingsDocument(desktopPath, packageName, packageVersion).toJson();
    if (fileDiffers(path, document) && !writeFile(path, document))
        qCWarning(launcherLog) << "Unable to write json file" << path << "for writing";
}
