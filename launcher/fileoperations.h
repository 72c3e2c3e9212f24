// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>

/// Whether the file at @p path holds anything but @p bytes. True when it cannot be read.
bool fileDiffers(const QString &path, const QByteArray &bytes);

/// Replaces the file at @p path by @p bytes in one step: readers see the old contents or the
/// new, never a part. False when that failed, and for no bytes at all; the old file then
/// stays.
bool writeFile(const QString &path, const QByteArray &bytes);
