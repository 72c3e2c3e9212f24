// SPDX-License-Identifier: BSD-3-Clause
#include "vsurepomanager.h"

#include "inifile.h"

QStringList VsuRepoManager::repos(bool rnd, int filter) const
{
    Q_UNUSED(filter)
    const QString key = rnd ? QStringLiteral("vsu/rndRepos") : QStringLiteral("vsu/repos");
    return iniValue(repositoryFile, key).toStringList();
}
