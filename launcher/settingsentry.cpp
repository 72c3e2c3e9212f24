// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/settingsentry.h"

#include "config/paths.h"
#include "launcher/fileoperations.h"
#include "launcher/logging.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringBuilder>

namespace {

void appendString(QByteArray &json, const QString &text)
{
    const int start = json.size();
    json.resize(start + text.size() + 2);
    char *end = json.data() + start;
    *end++ = '"';
    // No wider or narrower than a character, or the compiler takes them one by one.
    ushort needsEscapes{};
    for (const QChar character : text) {
        const ushort unit = character.unicode();
        needsEscapes |= unit < ' ' || unit > '~' || unit == '"' || unit == '\\' ? 1 : 0;
        *end++ = static_cast<char>(unit);
    }
    *end = '"';
    if (needsEscapes) {
        const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        json.truncate(start);
        json.append(array.constData() + 1, array.size() - 2);
    }
}

// The same bytes as QJsonDocument::toJson makes of the whole document, which takes it longer
// than reading the file that they are compared with.
QByteArray settingsDocument(
    const QString &name, const QString &packageName, const QString &packageVersion)
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
    appendString(json, QLatin1String("applications/") % name % QLatin1String(".desktop"));
    json += R"(,
            "type": "page"
        }
    ]
}
)";
    return json;
}

} // namespace

bool writeSettingsEntry(
    const QString &name, const QString &packageName, const QString &packageVersion)
{
    const QString path = QLatin1String(Paths::settingsEntries) % name % QLatin1String(".json");
    const QByteArray document = settingsDocument(name, packageName, packageVersion);
    if (!fileDiffers(path, document))
        return false;
    if (writeFile(path, document))
        return true;
    qCWarning(launcherLog) << "Unable to write json file" << path << "for writing";
    return false;
}

QString settingsEntryVersion(const QString &path)
{
    const QByteArray document = readFile(path).value_or(QByteArray());
    const QJsonValue entry = QJsonDocument::fromJson(document)[QLatin1String("entries")][0];
    return entry[QLatin1String("params")][QLatin1String("properties")]
                [QLatin1String("packageVersion")]
                    .toString();
}
