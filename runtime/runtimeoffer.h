// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Whether the Android runtime's system image is on this device.
bool runtimeImageExists();

/// Whether the device's software repositories carry the runtime. Reads their configuration
/// anew at each call.
bool runtimeInRepos();

/// Opens the store client at the runtime's page, as the user of the active seat, or as root
/// when no seat is active, and waits for the launcher program; gives the launcher's exit status.
/// Without that program the forked child returns from here too, with 1 and after a message on
/// standard error, and goes on as a second copy of the process, for whose end the first waits:
/// a device whose repositories carry the runtime must have the launcher.
int offerRuntimePackage();
