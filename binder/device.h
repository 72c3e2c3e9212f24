// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// The binder device that the Android runtime speaks on.
constexpr char runtimeBinderDevice[] = "/dev/puddlejumper";
