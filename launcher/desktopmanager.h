// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "config/apkconfig.h"
#include "launcher/announcedlaunchers.h"
#include "launcher/apklauncher.h"

#include <QMap>
#include <QObject>
#include <QStringList>
#include <QVector>

#include <vector>

/// A launcher as its files have it.
struct InstalledLauncher
{
    QString desktopPath;
    QString name; ///< shown to the user
    QString icon;
    QString version; ///< of the package; empty when there is no settings entry
    bool isHidden = false; ///< from the home screen's grid
};

/// Keeps the session's application list in step with the launchers that the Android runtime
/// announces: for each a desktop entry, an icon and a settings entry. The files are the only
/// lasting record, and every question is answered by reading them again. File operations that
/// fail are logged as warnings; the work goes on with the next step.
class DesktopManager : public QObject
{
    Q_OBJECT

public:
    /// Reads the blacklist, once, from /etc/lumd/app-blacklist and from the file that the
    /// environment variable LUMD_PACKAGE_BLACKLIST_PATH names: one package a line.
    explicit DesktopManager(const ApkConfig &config);

    /// Where the desktop entry of @p launcher lies, whether it exists or not.
    QString desktopFilePath(const ApkLauncher &launcher) const;

    /// The generated desktop entries on disk: package name to paths.
    QMap<QString, QStringList> installedLaunchers() const;
    /// The same with what the files tell, without entries that name no package.
    QMap<QString, QVector<InstalledLauncher>> launcherDetails() const;
    /// The paths of all generated desktop entries.
    QStringList desktopFiles() const;
    /// The packages that have a generated desktop entry.
    QStringList packages() const;

    /// The package that the desktop entry @p path belongs to, or @p path unchanged when it is
    /// not one of the generated entries.
    QString packageForDesktopFile(const QString &path) const;
    /// The name shown for @p package, or @p package itself when it has no desktop entry.
    QString appName(const QString &package) const;

    /// Removes the desktop entry @p desktopPath with its icon and its settings entry. False when
    /// the entry is still there.
    bool deleteLauncher(const QString &desktopPath);

Q_SIGNALS:
    /// A launcher that had no desktop entry. Emitted before the entry is on disk.
    void newApplicationInstalled(const ApkLauncher &launcher);
    /// One of a launcher's files holds something else than before. All are on disk.
    void launcherChanged(const QString &desktopPath, const QString &package, const QString &name,
        const QString &icon);
    /// A desktop entry has been removed.
    void launcherGone(const QString &desktopPath, const QString &package);

public Q_SLOTS:
    /// A launcher is refused, with a warning, when it has no caption or when its package or
    /// class cannot be part of a file name and of a line.
    void onCreateLauncher(const ApkLauncher &launcher);
    void onRemovePackage(const QString &package);
    /// Removes every generated entry that was not announced since the process started; the
    /// first time also what a killed process left behind in the middle of its writes.
    void onLaunchersComplete();

private:
    struct Installed
    {
        QString packageName;
        QString path;
    };

    void readBlacklist(const QString &path);
    std::vector<Installed> scan() const;
    void removeLaunchers(const QStringList &desktopPaths, const QString &package);
    // What the entry is that holds nothing but the launcher's own keys.
    QByteArray entryText(const ApkLauncher &launcher, const QString &iconPath, bool isHidden) const;

    QStringList m_blacklist;
    AnnouncedLaunchers m_announced;
    bool m_isSwept = false;
    const QString m_apkFolder; // as it stands in the entries
};
