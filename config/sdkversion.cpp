// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"

#include "config/logging.h"

#include <QFile>
#include <QStringList>

namespace {

constexpr char runtimeDir[] = "/opt/alien/";
qint32 cachedSdkVersion = 0;

// The system properties that an Android image is built with (build.prop).
qint32 readSdkVersion(const QString &buildProperties)
{
    QFile file(buildProperties);
    if (!file.open(QIODevice::ReadOnly))
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
