// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Blocks until the runtime shows a window of @p package, for 5 seconds at most.
void waitForWindow(const QString &package);
