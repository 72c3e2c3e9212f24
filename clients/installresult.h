// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// Why an installation failed, in the user's language, for a @p returnCode of Android's
/// PackageManager (its INSTALL_ constants) other than INSTALL_SUCCEEDED.
QString installFailureText(qint32 returnCode);
