// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Whether @p text holds a character that ends a line or steers a terminal: those of the two
/// control blocks, and the line and paragraph separators.
bool holdsControlCharacters(const QString &text);

/// @p text with a blank in the place of each such character.
QString withoutControlCharacters(QString text);
