// SPDX-License-Identifier: BSD-3-Clause
#include "vsurepomanager.h"

#include "inifile.h"

QStringList VsuRepoManager::repos(bool rnd, int filter) const
{
    if (filter != 0)
        return {};
    const QString key = rnd ? QStringLiteral("vsu/rndRepos") : QStringLiteral("vsu/repos");
    return iniValue(repositoryFile, key).toStringList();
}
