// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/binder/runtimetest.h"
#include "tests/support/ownclock.h"

/// The base of tests of connections. Time stands still, so that the tries of a connection that
/// waits come when a test wants them to.
class ConnectionTest : public RuntimeTest
{
    Q_OBJECT

protected:
    StoppedClock m_clock;
};
