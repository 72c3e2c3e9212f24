// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QVariant>

namespace Quillfin {

/// The device's policy settings.
class PolicyValue
{
public:
    /// The value of the setting numbered @p key, from the group "policy" of
    /// /etc/lumd/platform/policy.conf, read anew at each call. Invalid when it is not set.
    static QVariant keyValue(int key);
};

} // namespace Quillfin
