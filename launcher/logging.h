// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

/// "com.tovra.lumd.launcher": launchers announced by the runtime and the files made of them.
Q_DECLARE_LOGGING_CATEGORY(launcherLog)
