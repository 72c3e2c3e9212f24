// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/fileoperations.h"

#include <QFile>
#include <QSaveFile>

bool fileDiffers(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    return file.readAll() != bytes;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    // A failed write, as opposed to an empty one, makes the commit fail.
    if (file.write(bytes) == 0)
        return false;
    return file.commit();
}
