// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Removes what QSaveFile leaves in the folders of entries, icons and settings entries when the
/// process is killed before it renames the file into place. Nothing else is touched. To be
/// called only while no generated file is being written.
void removeLeftovers();
