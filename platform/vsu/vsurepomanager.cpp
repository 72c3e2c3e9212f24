// SPDX-License-Identifier: BSD-3-Clause
#include "vsurepomanager.h"

#include <QSettings>

QStringList VsuRepoManager::repos(bool rnd, int filter) const
{
    Q_UNUSED(filter)
    const QSettings settings(QStringLiteral("/etc/lumd/platform/vsu.conf"), QSettings::IniFormat);
    return settings.value(rnd ? QStringLiteral("vsu/rndRepos") : QStringLiteral("vsu/repos"))
        .toStringList();
}
