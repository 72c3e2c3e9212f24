// SPDX-License-Identifier: BSD-3-Clause
#include "vsu.h"

#include "inifile.h"

int Vsu::deviceMode() const
{
    return iniValue("/etc/lumd/platform/vsu.conf", QStringLiteral("vsu/deviceMode")).toInt();
}
