// SPDX-License-Identifier: BSD-3-Clause
#include "clients/appsizeinfo.h"

#include <QDBusMetaType>

void AppSizeInfo::registerMetaType()
{
    qRegisterMetaType<AppSizeInfo>();
    qDBusRegisterMetaType<AppSizeInfo>();
}

QDBusArgument &operator<<(QDBusArgument &argument, const AppSizeInfo &info)
{
    argument.beginStructure();
    argument << info.codeBytes << info.dataBytes << info.cacheBytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, AppSizeInfo &info)
{
    argument.beginStructure();
    argument >> info.codeBytes >> info.dataBytes >> info.cacheBytes;
    argument.endStructure();
    return argument;
}
