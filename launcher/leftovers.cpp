// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/leftovers.h"

#include "config/paths.h"
#include "launcher/fileoperations.h"
#include "launcher/generatedprefix.h"
#include "launcher/logging.h"

#include <QDir>
#include <QRegularExpression>

namespace {

// QSaveFile puts six characters behind the name of the file that is to come.
QRegularExpression temporaryName()
{
    const QString pattern =
        QLatin1String(generatedPrefix) + QLatin1String(".*\\.(desktop|png|json)\\.[A-Za-z0-9]{6}");
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern),
        QRegularExpression::DotMatchesEverythingOption);
}

} // namespace

void removeLeftovers()
{
    const QRegularExpression temporary = temporaryName();
    for (const char *const folder : {Paths::applications, Paths::icons, Paths::settingsEntries}) {
        // Of the names that cannot be meant nothing more is asked.
        const QStringList names =
            QDir(QLatin1String(folder))
                .entryList({QLatin1String(generatedPrefix) + QLatin1String("*.??????")},
                    QDir::Files | QDir::NoSymLinks)
                .filter(temporary);
        for (const QString &name : names) {
            const QString path = QLatin1String(folder) + name;
            qCDebug(launcherLog) << "Deleting:" << path;
            removeFile(path);
        }
    }
}
