// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Publishes the settings page of the app behind the desktop entry @p desktopPath, as a JSON
/// file for the settings application. A file that holds the same already is not touched; a
/// write that fails is logged.
void writeSettingsEntry(
    const QString &desktopPath, const QString &packageName, const QString &packageVersion);
