// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class QString;
struct sd_bus_message;

/// Appends an argument of type "s", up to the first NUL. Takes every text that the bus takes:
/// sd-bus refuses Unicode's noncharacters, the bus does not. Negative on failure, an errno.
int appendString(sd_bus_message *message, const QString &text);
