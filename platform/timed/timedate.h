// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Names of org.freedesktop.timedate1(5).
namespace Timedate {

constexpr char service[] = "org.freedesktop.timedate1";
constexpr char path[] = "/org/freedesktop/timedate1";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";
constexpr char timezoneProperty[] = "Timezone";

} // namespace Timedate
