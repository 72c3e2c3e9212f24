// SPDX-License-Identifier: BSD-3-Clause
#include "binder/logging.h"

Q_LOGGING_CATEGORY(binderLog, "com.tovra.lumd.binder", QtWarningMsg)
Q_LOGGING_CATEGORY(parcelLog, "com.tovra.lumd.parcel", QtWarningMsg)
