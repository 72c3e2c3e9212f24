// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// The one seat of a device, by systemd's own default name (sd-login(3)).
constexpr char seatName[] = "seat0";
