// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

/// "com.tovra.lumd.binder": links to the runtime's services and the calls made on them.
Q_DECLARE_LOGGING_CATEGORY(binderLog)
/// "com.tovra.lumd.parcel": the contents of calls.
Q_DECLARE_LOGGING_CATEGORY(parcelLog)
