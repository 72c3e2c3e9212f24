// SPDX-License-Identifier: BSD-3-Clause
#include "inifile.h"

#include <QFile>
#include <QSettings>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool openRegularFile(const char *path, QFile &file)
{
    // A FIFO in the file's place is opened without waiting for its other end.
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    close(descriptor);
    return false;
}

} // namespace

QVariant iniValue(const char *path, const QString &key)
{
    QFile file;
    QFile copy;
    if (!openRegularFile(path, file)
        || !copy.open(
            memfd_create("ini", MFD_CLOEXEC), QIODevice::ReadWrite, QFileDevice::AutoCloseHandle))
        return {};
    const QByteArray text = file.readAll();
    if (file.error() != QFileDevice::NoError || copy.write(text) != text.size() || !copy.flush())
        return {};

    // QSettings keeps what it has read of a name until it sees another size or time. What it
    // keeps of this copy's name is nothing.
    QSettings settings(QStringLiteral("/proc/self/fd/%1").arg(copy.handle()), QSettings::IniFormat);
    QVariant value = settings.value(key);
    if (!copy.resize(0))
        return {};
    settings.sync();
    return value;
}
