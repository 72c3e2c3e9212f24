// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gbinder.h>

/// Prints how calls of `client` go that nobody waits for. At its end the peer is dead.
void compareAsynchronousCalls(GBinderRemoteObject *peer, GBinderClient *client);
