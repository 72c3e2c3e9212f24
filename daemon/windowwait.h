// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Blocks until the runtime shows a window of @p package. Gives up when it has none after ten
/// questions, with half a second after each; a runtime that does not answer blocks for longer.
void waitForWindow(const QString &package);
