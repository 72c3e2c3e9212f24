// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/logging.h"

Q_LOGGING_CATEGORY(launcherLog, "com.tovra.lumd.launcher", QtWarningMsg)
