// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QVariant>

namespace Quillfin {

/// The device's policy settings.
class PolicyValue
{
public:
    /// The setting numbered @p key, from the group "policy" of /etc/lumd/platform/policy.conf:
    /// true for "true" and "1", false for anything else, invalid when it is not set or when that is
    /// no regular file. The file is read at each call.
    static QVariant keyValue(int key);
};

} // namespace Quillfin
