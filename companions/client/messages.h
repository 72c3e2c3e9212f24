// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/androidapps.h"
#include "client/clienterror.h"
#include "client/daemonstate.h"

#include <systemd/sd-bus.h>

/// What the messages of lumd's interfaces hold. The readers begin at the message's place and give
/// false when something else is there.

/// Takes over what an a{sv} of properties holds, and leaves the rest of the state as it is.
bool readState(sd_bus_message *message, DaemonState &state);

/// Appends the apps of an a{sa(ssssb)}.
bool readApps(sd_bus_message *message, QVector<AndroidApp> &apps);

/// The error of a reply.
ClientError errorOf(const sd_bus_error *error);
