// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

/// "com.tovra.lumd.config": paths, names and the runtime's properties.
Q_DECLARE_LOGGING_CATEGORY(configLog)
