// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"

#include "config/logging.h"

#include <QRegExp>

namespace {

// The runtime's own name for the user's home, a volume with a fixed identifier.
constexpr char homeVolume[] = "/storage/8ff87de4-0b37-4799-b09a-82773e869e07";
// Android's primary shared storage, which lies in this folder of the user's home.
constexpr char sharedStorageFolder[] = "/android_storage";
constexpr char sharedStorage[] = "/storage/emulated/0";

QString homePathForRuntime(QString path)
{
    path.replace(QRegExp(QStringLiteral("^\\/home\\/[^\\/]*")), QString());
    qCDebug(configLog) << "Removed home:" << path;
    if (path.startsWith(QLatin1String(sharedStorageFolder)))
        return path.replace(QLatin1String(sharedStorageFolder), QLatin1String(sharedStorage));
    return path.prepend(QLatin1String(homeVolume));
}

} // namespace

QString ApkConfig::runtimePath(const QString &path)
{
    qCDebug(configLog) << "Orig path: " << path;

    QString result = path;
    if (result.startsWith(QLatin1String("file:/")))
        result = QUrl(result, QUrl::TolerantMode).toLocalFile();

    if (result.startsWith(QLatin1String("/home")))
        result = homePathForRuntime(result);
    else if (result.startsWith(QLatin1String("/run/media/")))
        result.replace(
            QRegExp(QStringLiteral("^\\/run\\/media\\/[^\\/]*")), QStringLiteral("/storage"));

    qCDebug(configLog) << "Final path: " << result;
    return result;
}

QUrl ApkConfig::runtimeUrl(const QString &path)
{
    const QString translated = runtimePath(path);
    if (translated.startsWith(QLatin1Char('/')))
        return QUrl::fromLocalFile(translated);
    return QUrl(translated, QUrl::TolerantMode);
}
