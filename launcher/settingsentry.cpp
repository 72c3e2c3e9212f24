// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/settingsentry.h"

#include "config/launchernames.h"
#include "launcher/fileoperations.h"
#include "launcher/logging.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringBuilder>
#include <QStringView>

namespace {

void appendString(QByteArray &json, const QString &text)
{
    const int start = json.size();
    json.resize(start + text.size() + 2);
    char *end = json.data() + start;
    *end++ = '"';
    bool isPlain = true;
    for (const QChar character : text) {
        const ushort unit = character.unicode();
        isPlain &= unit >= ' ' && unit <= '~' && unit != '"' && unit != '\\';
        *end++ = static_cast<char>(unit);
    }
    *end = '"';
    if (!isPlain) {
        const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        json.truncate(start);
        json.append(array.constData() + 1, array.size() - 2);
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
    const QStringView name =
        QStringView(desktopPath).mid(desktopPath.lastIndexOf(QLatin1Char('/')) + 1);
    appendString(json, QLatin1String("applications/") % name);
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
