// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Whether the Android runtime's system image is on this device.
bool runtimeImageExists();

/// Whether the device's software repositories carry the runtime. Reads their configuration
/// anew at each call.
bool runtimeInRepos();

/// Opens the store client at the runtime's page, as the user of the active seat, or as root
/// when no seat is active, and waits for the launcher program. The launcher's exit status, or
/// 1, after a message on standard error, when it could not be run. A child that fails before
/// it has become the launcher returns from here too, as a second copy of the process.
int offerRuntimePackage();
