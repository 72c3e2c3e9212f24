// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/daemon/daemonfixture.h"

/// Starts the built daemon, connected to the runtime's package manager, unless it runs already.
void startReadyDaemon();
