// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

/// "com.tovra.lumd.service": the runtime's unit and the services published to the runtime.
Q_DECLARE_LOGGING_CATEGORY(serviceLog)
