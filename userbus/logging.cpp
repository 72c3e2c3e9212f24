// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/logging.h"

Q_LOGGING_CATEGORY(userBusLog, "com.tovra.lumd.daemon", QtWarningMsg)
