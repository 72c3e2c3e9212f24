// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/settingsentry.h"

#include "config/launchernames.h"
#include "launcher/fileoperations.h"
#include "launcher/logging.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringBuilder>
#include <QStringView>

#include <algorithm>

namespace {

bool needsEscape(QChar character)
{
    const ushort unit = character.unicode();
    return unit < ' ' || unit > '~' || unit == '"' || unit == '\\';
}

void appendString(QByteArray &json, const QString &text)
{
    if (std::any_of(text.begin(), text.end(), needsEscape)) {
        const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        json.append(array.constData() + 1, array.size() - 2);
        return;
    }
    json += '"';
    const int start = json.size();
    json.resize(start + text.size());
    std::transform(text.begin(), text.end(), json.begin() + start,
        [](QChar character) { return static_cast<char>(character.unicode()); });
    json += '"';
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
