// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

/// "com.tovra.lumd.daemon": requests of the bus and what becomes of them.
Q_DECLARE_LOGGING_CATEGORY(daemonLog)
