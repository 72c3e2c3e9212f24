// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "session.h"

/// Asks lumd to show something of Android, and tells whether it does so at once or when the runtime
/// is up. `ask` makes the request, `what` is its name in requestQueued(), `text` tells a person
/// what he will see.
ExitCode requestLaunch(Session &session, const QString &what, const QString &text,
    const std::function<ClientError()> &ask);

/// The same for an intent.
ExitCode requestIntent(Session &session, const AndroidIntent &intent, const QString &text);
