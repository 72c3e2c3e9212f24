// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

/// The one Android user that the runtime has (UserHandle.USER_SYSTEM).
constexpr qint32 androidUser = 0;
