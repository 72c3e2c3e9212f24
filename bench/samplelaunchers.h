// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "launcher/apklauncher.h"

#include <QVector>

#include <string>
#include <vector>

class DesktopManager;

/// Apps as a handset has them, each with an icon of 20 KB, and the files that are made of them.
namespace SampleLaunchers {

QVector<ApkLauncher> launchers(int count);

/// Announces them all.
void announce(DesktopManager &manager, const QVector<ApkLauncher> &launchers);

/// The paths of the generated files on disk, in the order in which they are looked at: for
/// each launcher the desktop entry, the icon and the settings entry.
std::vector<std::string> generatedFiles(
    const DesktopManager &manager, const QVector<ApkLauncher> &launchers);
/// Only the desktop entries.
std::vector<std::string> desktopEntries(
    const DesktopManager &manager, const QVector<ApkLauncher> &launchers);

/// Removes all generated files.
void removeFiles(const std::vector<std::string> &files);

} // namespace SampleLaunchers
