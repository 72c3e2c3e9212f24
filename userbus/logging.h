// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

/// "com.tovra.lumd.daemon", for what the user's bus did not take.
Q_DECLARE_LOGGING_CATEGORY(userBusLog)
