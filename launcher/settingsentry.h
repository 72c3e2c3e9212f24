// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Publishes the settings page of an app, as a JSON file for the settings application. @p name
/// is the file name of the app's desktop entry, less the ".desktop". A file that holds the same
/// already is not touched; a write that fails is logged.
void writeSettingsEntry(
    const QString &name, const QString &packageName, const QString &packageVersion);
