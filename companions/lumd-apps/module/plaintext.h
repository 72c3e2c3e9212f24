// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// A text that an app chose, fit for a single line of the window: control codes and line breaks
/// become their visible signs, marks that turn the direction of what follows are left out, and
/// what is longer than `length` characters ends in an ellipsis. It is to be shown as plain text.
QString shownText(const QString &text, int length = 200);

/// "1.2 MB", in the user's language; "0 bytes" for a negative number.
QString shownBytes(qint64 bytes);
