// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Publishes the settings page of an app, as a JSON file for the settings application. @p name
/// is the file name of the app's desktop entry, less the ".desktop". A file that holds the same
/// already is not touched; a write that fails is logged. True when the file was written.
bool writeSettingsEntry(
    const QString &name, const QString &packageName, const QString &packageVersion);

/// The version of the app in the settings entry at @p path. A null string when there is none.
QString settingsEntryVersion(const QString &path);
