// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"
#include "fuzz/setup.h"

#include <QStringList>

// Both ways to ask for a value must agree, and a value that was set must be there in the file
// that is saved.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString fileName = QStringLiteral("/usr/share/applications/fuzzed.desktop");
    const QString set = QStringLiteral("X-Set");
    Fuzz::writeFile("/usr/share/applications/fuzzed.desktop", Fuzz::bytes(data, size));
    {
        DesktopEntry entry(fileName);
        for (const QString &key : {QString(QLatin1String("")), QStringLiteral("Name"),
                 QStringLiteral("X-lumd-packageName")}) {
            const QString value = entry.value(key);
            const QString read = DesktopEntry::readValue(fileName, key);
            Fuzz::require(value == read && value.isNull() == read.isNull());
        }
        entry.setValue(set, QStringLiteral("a=b"));
        entry.remove(QStringLiteral("Name"));
    }
    const DesktopEntry saved(fileName);
    Fuzz::require(saved.value(set) == QLatin1String("a=b"));
    Fuzz::require(saved.value(QStringLiteral("Name")).isNull());
    return 0;
}
