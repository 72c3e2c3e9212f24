// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// How the names of all files begin that are made of launchers.
constexpr char generatedPrefix[] = "lumd_launcher_";
