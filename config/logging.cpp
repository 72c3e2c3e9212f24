// SPDX-License-Identifier: BSD-3-Clause
#include "config/logging.h"

Q_LOGGING_CATEGORY(configLog, "com.tovra.lumd.config", QtWarningMsg)
