// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "config/launchernames.h"
#include "config/paths.h"
#include "launcher/desktopentry.h"
#include "launcher/fileoperations.h"
#include "launcher/logging.h"
#include "launcher/settingsentry.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QStringBuilder>

namespace {

// The names of generated desktop entries, around that of the launcher.
constexpr char entryPrefix[] = "lumd_launcher_";
constexpr char entrySuffix[] = ".desktop";

constexpr char fixedBlacklist[] = "/etc/lumd/app-blacklist";

// Keys that are both written and asked for. The X-lumd ones are this daemon's own, the
// others freedesktop's.
constexpr char nameKey[] = "Name";
constexpr char noDisplayKey[] = "NoDisplay";
constexpr char packageNameKey[] = "X-lumd-packageName";

QString generatedFileName(const QString &launcherName)
{
    return QLatin1String(entryPrefix) % launcherName % QLatin1String(entrySuffix);
}

bool isPartnerSpacePackage(const QString &packageName)
{
    return unversionedApkExists(
        QDir(QLatin1String(Paths::partnerSpace)), packageName + QLatin1String(".apk"));
}

void writeIcon(const QString &iconPath, const QByteArray &icon)
{
    if (!writeFile(iconPath, icon))
        qCWarning(launcherLog) << "Unable to write icon:" << iconPath;
}

void removeFile(const QString &path)
{
    if (!QFile::remove(path))
        qCWarning(launcherLog) << "Could not remove:" << path;
}

} // namespace

DesktopManager::DesktopManager(const ApkConfig &config) : m_config(config)
{
    if (!QDir().mkpath(QLatin1String(Paths::icons)))
        qCWarning(launcherLog) << "Cannot create directory:" << Paths::icons;
    readBlacklist(QLatin1String(fixedBlacklist));
    readBlacklist(QString::fromUtf8(qgetenv("LUMD_PACKAGE_BLACKLIST_PATH")));
}

void DesktopManager::readBlacklist(const QString &path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return;
    while (!file.atEnd()) {
        const QString package = QString::fromUtf8(file.readLine()).trimmed();
        if (!package.isEmpty())
            m_blacklist.append(package);
    }
}

QString DesktopManager::desktopFilePath(const ApkLauncher &launcher) const
{
    return QLatin1String(Paths::applications)
        + generatedFileName(escapeLauncherName(launcher.packageName, launcher.className));
}

QMap<QString, QStringList> DesktopManager::installedLaunchers() const
{
    QMap<QString, QStringList> installed;
    const QString folder = QLatin1String(Paths::applications);
    const QStringList names =
        listFiles(folder, QLatin1String(entryPrefix), QLatin1String(entrySuffix));
    for (const QString &name : names) {
        const QString path = folder + name;
        const QString package = DesktopEntry::readValue(path, QLatin1String(packageNameKey));
        installed[package].append(path);
    }
    return installed;
}

QStringList DesktopManager::desktopFiles() const
{
    QStringList files;
    const QMap<QString, QStringList> installed = installedLaunchers();
    for (const QStringList &paths : installed)
        files.append(paths);
    return files;
}

QStringList DesktopManager::packages() const
{
    return installedLaunchers().keys();
}

QString DesktopManager::packageForDesktopFile(const QString &path) const
{
    const QMap<QString, QStringList> installed = installedLaunchers();
    for (auto entry = installed.constBegin(); entry != installed.constEnd(); ++entry) {
        if (entry->contains(path)) {
            qCDebug(launcherLog) << "Resolved:" << path << "-> " << entry.key();
            return entry.key();
        }
    }
    return path;
}

QString DesktopManager::appName(const QString &package) const
{
    const QStringList paths = installedLaunchers().value(package);
    if (paths.isEmpty())
        return package;
    return DesktopEntry(paths.first()).value(QLatin1String(nameKey));
}

void DesktopManager::onCreateLauncher(const ApkLauncher &launcher)
{
    const QString desktopPath = desktopFilePath(launcher);
    DesktopEntry entry(desktopPath);
    qCDebug(launcherLog) << "onCreateLauncher:" << desktopPath;
    if (launcher.caption.isEmpty()) {
        qCWarning(launcherLog) << "Not creating launcher for " << desktopPath
                               << ", as it has no caption";
        return;
    }
    track(launcher);

    fillEntry(entry, launcher);

    const QString iconPath = iconPathFor(desktopPath);
    qCDebug(launcherLog) << "iconfilename:" << iconPath;
    if (entry.isNew() || fileDiffers(iconPath, launcher.icon))
        writeIcon(iconPath, launcher.icon);
    entry.setValue(QStringLiteral("Icon"), iconPath);

    if (isPartnerSpacePackage(launcher.packageName)) {
        entry.setValue(QLatin1String(noDisplayKey), QStringLiteral("true"));
        entry.setValue(QStringLiteral("Categories"), QStringLiteral("X-QuillfinPartnerSpace"));
    }

    writeSettingsEntry(desktopPath, launcher.packageName, launcher.packageVersion);
    if (entry.isNew())
        Q_EMIT newApplicationInstalled(launcher);
}

void DesktopManager::track(const ApkLauncher &launcher)
{
    // One at the most: every record has come in here.
    m_launchers.removeOne(launcher);
    m_launchers.append(launcher);
}

void DesktopManager::fillEntry(DesktopEntry &entry, const ApkLauncher &launcher) const
{
    entry.setValue(QStringLiteral("Version"), QStringLiteral("1.0"));
    entry.setValue(QStringLiteral("Type"), QStringLiteral("Application"));
    entry.setValue(QLatin1String(nameKey), launcher.caption);
    if (m_blacklist.contains(launcher.packageName))
        entry.setValue(QLatin1String(noDisplayKey), QStringLiteral("true"));
    else
        entry.remove(QLatin1String(noDisplayKey));
    entry.setValue(QStringLiteral("X-lumd-apkfile"),
        m_config.path(AppDir) % QLatin1Char('/') % launcher.packageName % QLatin1String(".apk"));
    entry.setValue(QLatin1String(packageNameKey), launcher.packageName);
    entry.remove(QStringLiteral("X-Tesk-Single-Instance"));
    entry.setValue(QStringLiteral("X-Tesk-Application-Type"), QStringLiteral("no-invoker"));
    entry.setValue(QStringLiteral("Exec"),
        QLatin1String("lumd-launcher ") % launcher.packageName % QLatin1String(".apk ")
            % launcher.packageName % QLatin1Char('/') % launcher.className);
}

void DesktopManager::onRemovePackage(const QString &package)
{
    qCDebug(launcherLog) << "onRemovePackage:" << package;
    const QStringList paths = installedLaunchers().value(package);
    for (const QString &path : paths)
        deleteLauncher(path);

    // Looks at every second record only, so records of the package can stay behind. That is
    // the settled behaviour: a record that stays keeps its files from being taken for stale.
    int index = 0;
    while (index < m_launchers.size()) {
        if (m_launchers.at(index).packageName == package) {
            m_launchers.removeAt(index);
            index += 1;
        } else {
            index += 2;
        }
    }
}

void DesktopManager::onLaunchersComplete()
{
    QSet<QString> expected;
    for (const ApkLauncher &launcher : qAsConst(m_launchers))
        expected.insert(desktopFilePath(launcher));

    const QMap<QString, QStringList> installed = installedLaunchers();
    for (const QStringList &paths : installed) {
        for (const QString &path : paths) {
            if (!expected.contains(path))
                deleteLauncher(path);
        }
    }
}

void DesktopManager::deleteLauncher(const QString &desktopPath)
{
    qCDebug(launcherLog) << "Deleting:" << desktopPath;
    removeFile(desktopPath);

    const QString iconPath = iconPathFor(desktopPath);
    qCDebug(launcherLog) << "Deleting:" << iconPath;
    removeFile(iconPath);

    const QString settingsPath = settingsEntryPathFor(desktopPath);
    if (QFile::exists(settingsPath))
        removeFile(settingsPath);
}
