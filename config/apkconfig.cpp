// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"

#include "config/logging.h"

ApkConfig::ApkConfig() : m_dataRoot(QStringLiteral("/home/.android"))
{
    constexpr char variable[] = "ANDROID_DATA_ROOT";
    if (qEnvironmentVariableIsSet(variable)) {
        m_dataRoot = QString::fromUtf8(qgetenv(variable));
        qCDebug(configLog) << "Using custom path for apps + data: " << m_dataRoot;
    }
}

QString ApkConfig::path(SymbolicPath which) const
{
    switch (which) {
    case DataRoot:
        return m_dataRoot;
    case AppDir:
        return QStringLiteral("%1/data/app/").arg(path(DataRoot));
    case IncomingDir:
        return QStringLiteral("%1/data/aas-staging/app/incoming/").arg(path(DataRoot));
    case PackagedDir:
        return QStringLiteral("%1/data/aas-staging/app/packaged/").arg(path(DataRoot));
    case AppDataDir:
        return QStringLiteral("%1/data/data/").arg(path(DataRoot));
    }
    qCWarning(configLog) << "Cannot handle symbolic path:" << static_cast<int>(which);
    return {};
}
