// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/logging.h"

Q_LOGGING_CATEGORY(serviceLog, "com.tovra.lumd.service", QtWarningMsg)
