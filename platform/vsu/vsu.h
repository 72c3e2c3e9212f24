// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// What the device's software service knows of the device.
class Vsu
{
public:
    /// The device's mode, "deviceMode" in the group "vsu" of /etc/lumd/platform/vsu.conf;
    /// 0 when it is not set.
    int deviceMode() const;
};
