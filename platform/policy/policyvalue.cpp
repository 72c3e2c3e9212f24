// SPDX-License-Identifier: BSD-3-Clause
#include "policyvalue.h"

#include <QSettings>

QVariant Quillfin::PolicyValue::keyValue(int key)
{
    const QSettings settings(
        QStringLiteral("/etc/lumd/platform/policy.conf"), QSettings::IniFormat);
    return settings.value(QStringLiteral("policy/%1").arg(key));
}
