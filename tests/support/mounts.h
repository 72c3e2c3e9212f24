// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Mounts of the private namespace. Every failure ends the process with a message.
namespace Mounts {

/// Makes a folder that may belong to the machine writable: an empty tmpfs takes its place, in
/// which every entry is the original one, but for those named in `left`, which are left out.
/// What is written to the folder itself stays in the namespace. (An overlay would do the
/// same, but not for an ordinary user.)
void makeWritable(const QString &folder, const QStringList &left);
/// Mounts an empty tmpfs; `options` are those of mount(8).
void mountEmpty(const QString &path, const QByteArray &options);
/// Puts a file or folder over another one.
void bind(const QString &source, const QString &target);
void setReadOnly(const QString &path, bool readOnly);

} // namespace Mounts
