// SPDX-License-Identifier: BSD-3-Clause
#include "fuzz/setup.h"
#include "launcher/controlcharacters.h"
#include "launcher/desktopentry.h"
#include "launcher/desktopmanager.h"

#include <QFile>

namespace {

QString firstPackage(const QByteArray &list)
{
    const QList<QByteArray> lines = list.split('\n');
    for (const QByteArray &line : lines) {
        const QString package = QString::fromUtf8(line).trimmed();
        if (!package.isEmpty())
            return package;
    }
    return {};
}

// A name that makes a file: not too long, and none that is refused.
bool makesFileName(const QString &package)
{
    return package.size() < 50 && !package.contains(QLatin1Char('/'))
        && !holdsControlCharacters(package);
}

} // namespace

// The first package of the list must come out hidden, whatever else the list holds.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray list = Fuzz::bytes(data, size);
    Fuzz::writeFile("/etc/lumd/app-blacklist", list);
    DesktopManager manager{ApkConfig()};

    ApkLauncher launcher;
    launcher.packageName = firstPackage(list);
    launcher.className = QStringLiteral("Main");
    launcher.caption = QStringLiteral("App");
    if (launcher.packageName.isEmpty() || !makesFileName(launcher.packageName))
        return 0;
    manager.onCreateLauncher(launcher);
    const QString path = manager.desktopFilePath(launcher);
    Fuzz::require(DesktopEntry(path).value(QStringLiteral("NoDisplay")) == QLatin1String("true"));
    manager.deleteLauncher(path);
    return 0;
}
