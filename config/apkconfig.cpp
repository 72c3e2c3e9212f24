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
        return m_dataRoot + QLatin1String("/data/app/");
    case IncomingDir:
        return m_dataRoot + QLatin1String("/data/aas-staging/app/incoming/");
    case PackagedDir:
        return m_dataRoot + QLatin1String("/data/aas-staging/app/packaged/");
    case AppDataDir:
        return m_dataRoot + QLatin1String("/data/data/");
    }
    qCWarning(configLog) << "Cannot handle symbolic path:" << static_cast<int>(which);
    return {};
}
