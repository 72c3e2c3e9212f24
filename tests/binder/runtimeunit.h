// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/mocksystemd.h"
#include "tests/support/privatebus.h"

/// The runtime's unit on a system bus of the test's own.
class RuntimeUnit
{
public:
    MockSystemd &systemd() { return m_systemd; }

    /// What the daemon finds when it starts: call it before ServiceController exists.
    void startOutAs(const QString &state);
    /// Changes the state and waits until ServiceController and all who follow it have dealt
    /// with it; false after ten seconds.
    bool become(const QString &state);

private:
    PrivateBus m_bus{PrivateBus::Kind::System};
    MockSystemd m_systemd;
};

/// Returns when the glib main loop has dealt with all that was pending, the notices of
/// gbinder among it; false after ten seconds.
bool settle();
