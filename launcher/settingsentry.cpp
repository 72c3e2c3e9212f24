// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/settingsentry.h"

#include "config/launchernames.h"
#include "launcher/fileoperations.h"
#include "launcher/logging.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

bool needsEscapes(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        return character < QLatin1Char(' ') || character > QLatin1Char('~')
            || character == QLatin1Char('"') || character == QLatin1Char('\\');
    });
}

void appendString(QByteArray &json, const QString &text)
{
    if (needsEscapes(text)) {
        const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        json.append(array.constData() + 1, array.size() - 2);
    } else {
        json.append('"').append(text.toLatin1()).append('"');
    }
}

// The same bytes as QJsonDocument::toJson makes of the whole document, which takes it longer
// than reading the file that they are compared with.
QByteArray settingsDocument(
    const QString &desktopPath, const QString &packageName, const QString &packageVersion)
{
    QByteArray json;
    json.reserve(1024);
    json += R"({
    "entries": [
        {
            "params": {
                "properties": {
                    "packageName": )";
    appendString(json, packageName);
    json += R"(,
                    "packageVersion": )";
    appendString(json, packageVersion);
    json += R"(
                },
                "source": "/usr/share/tovra-settings/pages/apk-configuration/apkConfigurationPage.qml"
            },
            "path": )";
    appendString(json, QLatin1String("applications/") + QFileInfo(desktopPath).fileName());
    json += R"(,
            "type": "page"
        }
    ]
}
)";
    return json;
}

} // namespace

void writeSettingsEntry(
    const QString &desktopPath, const QString &packageName, const QString &packageVersion)
{
    const QString path = settingsEntryPathFor(desktopPath);
    const QByteArray document = settingsDocument(desktopPath, packageName, packageVersion);
    if (fileDiffers(path, document) && !writeFile(path, document))
        qCWarning(launcherLog) << "Unable to write json file" << path << "for writing";
}
