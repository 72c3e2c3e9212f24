// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/logging.h"

Q_LOGGING_CATEGORY(daemonLog, "com.tovra.lumd.daemon", QtWarningMsg)
