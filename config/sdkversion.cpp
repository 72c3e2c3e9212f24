// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"

#include "config/logging.h"

#include <QFile>
#include <QStringList>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr char runtimeDir[] = "/opt/alien/";
qint32 cachedSdkVersion = 0;

// The system properties that an Android image is built with (build.prop).
qint32 readSdkVersion(const QString &buildProperties)
{
    // Without O_NONBLOCK a FIFO would be waited for, until somebody writes into it.
    const int descriptor =
        open(QFile::encodeName(buildProperties).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QFile file;
    if (descriptor < 0 || !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return 0;
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return 0;
    while (!file.atEnd()) {
        const QStringList parts =
            QString::fromUtf8(file.readLine().trimmed()).split(QLatin1Char('='));
        if (parts.first() == QLatin1String("ro.build.version.sdk"))
            return parts.value(1).toInt();
    }
    return 0;
}

} // namespace

qint32 ApkConfig::sdkVersion()
{
    if (cachedSdkVersion == 0)
        cachedSdkVersion = readSdkVersion(QLatin1String(runtimeDir) + QLatin1String("/build.prop"));
    if (cachedSdkVersion == 0)
        qCCritical(configLog) << "Cannot find sdk version in" << runtimeDir << "build properties";
    return cachedSdkVersion;
}

qint32 ApkConfig::knownSdkVersion()
{
    return cachedSdkVersion != 0
        ? cachedSdkVersion
        : readSdkVersion(QLatin1String(runtimeDir) + QLatin1String("/build.prop"));
}
