// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/announcedlaunchers.h"

#include "launcher/apklauncher.h"

void AnnouncedLaunchers::add(const ApkLauncher &launcher, const QString &desktopPath)
{
    for (auto found = m_byEntry.constFind(desktopPath);
        found != m_byEntry.constEnd() && found.key() == desktopPath; ++found) {
        const auto record = *found;
        if (record->packageName == launcher.packageName
            && record->className == launcher.className) {
            m_records.splice(m_records.end(), m_records, record);
            return;
        }
    }
    m_byEntry.insert(desktopPath,
        m_records.insert(m_records.end(), {launcher.packageName, launcher.className, desktopPath}));
}

void AnnouncedLaunchers::removePackage(const QString &package)
{
    auto record = m_records.begin();
    while (record != m_records.end()) {
        if (record->packageName == package) {
            m_byEntry.remove(record->desktopPath, record);
            record = m_records.erase(record);
        } else {
            ++record;
        }
        if (record != m_records.end())
            ++record;
    }
}
