// SPDX-License-Identifier: BSD-3-Clause
#include "vsu.h"

#include "inifile.h"

int Vsu::deviceMode() const
{
    return iniValue(repositoryFile, QStringLiteral("vsu/deviceMode")).toInt();
}
