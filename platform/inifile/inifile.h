// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QVariant>

/// What the stand-ins read.
constexpr char policyFile[] = "/etc/lumd/platform/policy.conf";
constexpr char repositoryFile[] = "/etc/lumd/platform/vsu.conf";

/// The value of @p key ("group/key") in the ini file at @p path, in the syntax of QSettings. The
/// file is read at each call, whatever its size and times say. Invalid when the key is not set and
/// when @p path is no regular file that can be read. Never waits for another program.
QVariant iniValue(const char *path, const QString &key);
