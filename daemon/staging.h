// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "daemon/filerights.h"

#include <QString>

#include <optional>

/// Copies the regular file at @p source, opened with these @p rights (without them: the process's
/// own), to @p copy, which must not exist yet and which nobody else may read. False when the file
/// cannot be opened, is none, does not fit on the disk, or holds fewer or more bytes than its size
/// said; part of the copy may be there then. Waits for the disk, but for nobody else.
bool copyForStaging(
    const QString &source, const std::optional<FileRights> &rights, const QString &copy);
