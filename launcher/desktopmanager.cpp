// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "config/launchernames.h"
#include "config/paths.h"
#include "launcher/controlcharacters.h"
#include "launcher/desktopentry.h"
#include "launcher/fileoperations.h"
#include "launcher/generatedprefix.h"
#include "launcher/leftovers.h"
#include "launcher/logging.h"
#include "launcher/settingsentry.h"

#include <QDir>
#include <QFile>
#include <QStringBuilder>

namespace {

constexpr char entrySuffix[] = ".desktop";
constexpr char apkSuffix[] = ".apk";

constexpr char fixedBlacklist[] = "/etc/lumd/app-blacklist";

// Keys that are both written and asked for. The X-lumd ones are this daemon's own, the
// others freedesktop's.
constexpr char nameKey[] = "Name";
constexpr char iconKey[] = "Icon";
constexpr char noDisplayKey[] = "NoDisplay";
constexpr char packageNameKey[] = "X-lumd-packageName";

// Whether the name stays within the folder and on the line that it is written to.
bool isPlainName(const QString &name)
{
    return !name.contains(QLatin1Char('/')) && !holdsControlCharacters(name);
}

QString generatedName(const ApkLauncher &launcher)
{
    return QLatin1String(generatedPrefix)
        % escapeLauncherName(launcher.packageName, launcher.className);
}

bool isPartnerSpacePackage(const QString &packageName)
{
    const QLatin1String folder(Paths::partnerSpace);
    const QLatin1String suffix(apkSuffix);
    // Only behind a dash can there be a number to be left out.
    return packageName.contains(QLatin1Char('-'))
        ? unversionedApkExists(QDir(folder), packageName % suffix)
        : fileExists(folder % packageName % suffix);
}

bool writeIcon(const QString &iconPath, const QByteArray &icon)
{
    if (writeFile(iconPath, icon))
        return true;
    qCWarning(launcherLog) << "Unable to write icon:" << iconPath;
    return false;
}

InstalledLauncher readLauncher(const QString &desktopPath)
{
    const DesktopEntry entry(desktopPath);
    const auto value = [&entry](const char *key) {
        const QString name = QLatin1String(key);
        return entry.contains(name) ? entry.value(name) : QString();
    };
    return {desktopPath, value(nameKey), value(iconKey),
        settingsEntryVersion(settingsEntryPathFor(desktopPath)),
        value(noDisplayKey) == QLatin1String("true")};
}

} // namespace

DesktopManager::DesktopManager(const ApkConfig &config)
    : m_apkFolder(withoutControlCharacters(config.path(AppDir)))
{
    if (!QDir().mkpath(QLatin1String(Paths::icons)))
        qCWarning(launcherLog) << "Cannot create directory:" << Paths::icons;
    readBlacklist(QLatin1String(fixedBlacklist));
    readBlacklist(QString::fromUtf8(qgetenv("LUMD_PACKAGE_BLACKLIST_PATH")));
}

void DesktopManager::readBlacklist(const QString &path)
{
    const QList<QByteArray> lines = readFile(path).value_or(QByteArray()).split('\n');
    for (const QByteArray &line : lines) {
        const QString package = QString::fromUtf8(line).trimmed();
        if (!package.isEmpty())
            m_blacklist.append(package);
    }
}

QString DesktopManager::desktopFilePath(const ApkLauncher &launcher) const
{
    return QLatin1String(Paths::applications) % generatedName(launcher)
        % QLatin1String(entrySuffix);
}

std::vector<DesktopManager::Installed> DesktopManager::scan() const
{
    const QStringList paths = listFiles(QLatin1String(Paths::applications),
        QLatin1String(generatedPrefix), QLatin1String(entrySuffix));
    std::vector<Installed> installed;
    installed.reserve(static_cast<std::size_t>(paths.size()));
    for (const QString &path : paths)
        installed.push_back({DesktopEntry::readValue(path, packageNameKey), path});
    return installed;
}

QMap<QString, QStringList> DesktopManager::installedLaunchers() const
{
    QMap<QString, QStringList> installed;
    for (const Installed &each : scan())
        installed[each.packageName].append(each.path);
    return installed;
}

QMap<QString, QVector<InstalledLauncher>> DesktopManager::launcherDetails() const
{
    QMap<QString, QVector<InstalledLauncher>> details;
    for (const Installed &each : scan()) {
        if (!each.packageName.isEmpty())
            details[each.packageName].append(readLauncher(each.path));
    }
    return details;
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
    const QString name = generatedName(launcher);
    const QString desktopPath =
        QLatin1String(Paths::applications) % name % QLatin1String(entrySuffix);
    qCDebug(launcherLog) << "onCreateLauncher:" << desktopPath;
    if (launcher.caption.isEmpty()) {
        qCWarning(launcherLog) << "Not creating launcher for " << desktopPath
                               << ", as it has no caption";
        return;
    }
    if (!isPlainName(launcher.packageName) || !isPlainName(launcher.className)) {
        qCWarning(launcherLog) << "Not creating launcher for " << desktopPath
                               << ", as its package or class holds a slash or a control character";
        return;
    }
    m_announced.add(launcher, desktopPath);

    DesktopEntry entry(desktopPath);
    // What iconPathFor() gives: there is no slash in the name, and no dot is left.
    const QString iconPath = QLatin1String(Paths::icons) % name % QLatin1String(".png");
    const bool isHidden = m_blacklist.contains(launcher.packageName);
    const QByteArray text = entryText(launcher, iconPath, isHidden);
    if (!entry.isSavedAs(text)) {
        entry.setAll(text);
        if (!isHidden)
            entry.remove(QLatin1String(noDisplayKey));
        entry.remove(QStringLiteral("X-Tesk-Single-Instance"));
    }

    qCDebug(launcherLog) << "iconfilename:" << iconPath;
    bool hasChanged = (entry.isNew() || fileDiffers(iconPath, launcher.icon))
        && writeIcon(iconPath, launcher.icon);

    if (isPartnerSpacePackage(launcher.packageName)) {
        entry.setValue(QLatin1String(noDisplayKey), QStringLiteral("true"));
        entry.setValue(QStringLiteral("Categories"), QStringLiteral("X-QuillfinPartnerSpace"));
    }

    hasChanged |= writeSettingsEntry(name, launcher.packageName, launcher.packageVersion);
    if (entry.isNew())
        Q_EMIT newApplicationInstalled(launcher);
    const bool isSaved = entry.commit();
    if (isSaved || (hasChanged && !entry.isNew()))
        Q_EMIT launcherChanged(desktopPath, launcher.packageName,
            withoutControlCharacters(launcher.caption), iconPath);
}

QByteArray DesktopManager::entryText(
    const ApkLauncher &launcher, const QString &iconPath, bool isHidden) const
{
    const QLatin1String apk(apkSuffix);
    const QLatin1String hidden(isHidden ? "\nNoDisplay=true" : "");
    const QString &package = launcher.packageName;
    const QString text = QLatin1String("[Desktop Entry]\nExec=lumd-launcher ") % package % apk
        % QLatin1Char(' ') % package % QLatin1Char('/') % launcher.className
        % QLatin1String("\nIcon=") % iconPath % QLatin1String("\nName=")
        % withoutControlCharacters(launcher.caption) % hidden
        % QLatin1String("\nType=Application\nVersion=1.0"
                        "\nX-Tesk-Application-Type=no-invoker\nX-lumd-apkfile=")
        % m_apkFolder % QLatin1Char('/') % package % apk % QLatin1String("\nX-lumd-packageName=")
        % package % QLatin1Char('\n');
    return text.toUtf8();
}

void DesktopManager::onRemovePackage(const QString &package)
{
    qCDebug(launcherLog) << "onRemovePackage:" << package;
    removeLaunchers(installedLaunchers().value(package), package);
    m_announced.removePackage(package);
}

void DesktopManager::onLaunchersComplete()
{
    QMap<QString, QStringList> stale;
    for (const Installed &each : scan()) {
        if (!m_announced.haveEntry(each.path))
            stale[each.packageName].append(each.path);
    }
    for (auto each = stale.constBegin(); each != stale.constEnd(); ++each)
        removeLaunchers(each.value(), each.key());
    if (!m_isSwept)
        removeLeftovers();
    m_isSwept = true;
}

void DesktopManager::removeLaunchers(const QStringList &desktopPaths, const QString &package)
{
    for (const QString &path : desktopPaths) {
        if (deleteLauncher(path))
            Q_EMIT launcherGone(path, package);
    }
}

bool DesktopManager::deleteLauncher(const QString &desktopPath)
{
    qCDebug(launcherLog) << "Deleting:" << desktopPath;
    const bool isGone = removeFile(desktopPath);

    const QString iconPath = iconPathFor(desktopPath);
    qCDebug(launcherLog) << "Deleting:" << iconPath;
    removeFile(iconPath);

    const QString settingsPath = settingsEntryPathFor(desktopPath);
    if (QFile::exists(settingsPath))
        removeFile(settingsPath);
    return isGone;
}
