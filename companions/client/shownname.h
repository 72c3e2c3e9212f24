// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// A text of an app, of a file name or of another program as a terminal may get it: control codes,
/// line ends, what changes the direction of writing and halves of surrogate pairs are shown as
/// "\n", "\t", "\x1b" or "\u202e", a backslash as two. All else, emoji and right-to-left letters
/// included, stays as it is.
QString shownName(const QString &text);

/// Whether shownName() would not leave that character alone. A surrogate counts as one of a pair.
bool isShownEscaped(QChar character);
