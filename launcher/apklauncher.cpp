// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/apklauncher.h"

bool operator==(const ApkLauncher &left, const ApkLauncher &right)
{
    return left.packageName == right.packageName && left.className == right.className;
}
