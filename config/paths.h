// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Where the files that other programs of the device read are kept. Each directory ends
/// in a slash.
namespace Paths {

/// Desktop entries, as the freedesktop menus find them (XDG_DATA_DIRS).
constexpr char applications[] = "/usr/share/applications/";
/// Icons that the desktop entries name.
constexpr char icons[] = "/var/lib/lumd/";
/// Pages that the settings application shows.
constexpr char settingsEntries[] = "/usr/share/tovra-settings/entries/";
/// Markers of the apps that belong to the partner space: one empty file an apk.
constexpr char partnerSpace[] = "/usr/share/lumd/partnerspace/";

} // namespace Paths
