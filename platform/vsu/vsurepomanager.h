// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QStringList>

/// The software repositories that the device is set up with.
class VsuRepoManager
{
public:
    /// The names of the repositories: "rndRepos" when @p rnd, else "repos", of the group
    /// "vsu" of /etc/lumd/platform/vsu.conf. @p filter is 0 for all of them; this stand-in knows no
    /// other value, and gives none.
    QStringList repos(bool rnd, int filter) const;
};
