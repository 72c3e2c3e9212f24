// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// The package that @p path names: a package name, an apk's file name or its path, of which
/// the version and the suffix are dropped. "/a/com.foo.bar-12.apk" gives "com.foo.bar".
QString packageNameFromFile(const QString &path);
