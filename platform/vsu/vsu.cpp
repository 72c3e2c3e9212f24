// SPDX-License-Identifier: BSD-3-Clause
#include "vsu.h"

#include <QSettings>

int Vsu::deviceMode() const
{
    const QSettings settings(QStringLiteral("/etc/lumd/platform/vsu.conf"), QSettings::IniFormat);
    return settings.value(QStringLiteral("vsu/deviceMode"), 0).toInt();
}
