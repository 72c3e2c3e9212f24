// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMultiHash>
#include <QString>

#include <list>

struct ApkLauncher;

/// The launchers announced since the process started, in the order of their last announcement.
/// Of each it holds only what tells it from the others.
class AnnouncedLaunchers
{
public:
    /// Takes @p launcher in at the end, or moves it there. @p desktopPath is its desktop entry,
    /// which launchers of different names can share.
    void add(const ApkLauncher &launcher, const QString &desktopPath);

    /// Looks at every second launcher only, so some of the package can stay behind. That is
    /// the settled behaviour: one that stays keeps its files from being taken for stale.
    void removePackage(const QString &package);

    /// Whether the desktop entry @p desktopPath belongs to one of them.
    bool haveEntry(const QString &desktopPath) const { return m_byEntry.contains(desktopPath); }

private:
    struct Record
    {
        QString packageName;
        QString className;
        QString desktopPath;
    };
    using Records = std::list<Record>;

    Records m_records;
    QMultiHash<QString, Records::iterator> m_byEntry;
};
