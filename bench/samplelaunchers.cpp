// SPDX-License-Identifier: BSD-3-Clause
#include "bench/samplelaunchers.h"

#include "config/launchernames.h"
#include "launcher/desktopmanager.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr int iconSize = 20 * 1024;

// Images do not compress or repeat; a fixed seed makes every run the same.
QByteArray image(unsigned int seed)
{
    std::minstd_rand random(seed);
    QByteArray bytes(iconSize, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = static_cast<char>(random() >> 8U);
    return bytes;
}

ApkLauncher launcher(int number)
{
    const QString package =
        QStringLiteral("com.example.studio%1.app_%2").arg(number % 20).arg(number);
    return {QStringLiteral("App number %1").arg(number),
        image(static_cast<unsigned int>(number + 1)), package,
        package + QStringLiteral(".MainActivity"), QStringLiteral("1.%1.0").arg(number)};
}

std::string native(const QString &path)
{
    return path.toStdString();
}

} // namespace

QVector<ApkLauncher> SampleLaunchers::launchers(int count)
{
    QVector<ApkLauncher> launchers;
    for (int number = 0; number < count; ++number)
        launchers.append(launcher(number));
    return launchers;
}

void SampleLaunchers::announce(DesktopManager &manager, const QVector<ApkLauncher> &launchers)
{
    for (const ApkLauncher &launcher : launchers)
        manager.onCreateLauncher(launcher);
}

std::vector<std::string> SampleLaunchers::generatedFiles(
    const DesktopManager &manager, const QVector<ApkLauncher> &launchers)
{
    std::vector<std::string> files;
    for (const ApkLauncher &launcher : launchers) {
        const QString desktopPath = manager.desktopFilePath(launcher);
        files.push_back(native(desktopPath));
        files.push_back(native(iconPathFor(desktopPath)));
        files.push_back(native(settingsEntryPathFor(desktopPath)));
    }
    return files;
}

std::vector<std::string> SampleLaunchers::desktopEntries(
    const DesktopManager &manager, const QVector<ApkLauncher> &launchers)
{
    std::vector<std::string> files;
    for (const ApkLauncher &launcher : launchers)
        files.push_back(native(manager.desktopFilePath(launcher)));
    return files;
}

void SampleLaunchers::removeFiles(const std::vector<std::string> &files)
{
    for (const std::string &file : files) {
        if (unlink(file.c_str()) != 0) {
            std::perror(file.c_str());
            std::exit(1);
        }
    }
}
