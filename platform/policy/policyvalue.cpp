// SPDX-License-Identifier: BSD-3-Clause
#include "policyvalue.h"

#include "inifile.h"

QVariant Quillfin::PolicyValue::keyValue(int key)
{
    const QVariant value = iniValue(policyFile, QStringLiteral("policy/%1").arg(key));
    if (!value.isValid())
        return {};
    // Not QVariant's own reading, for which "no" is true: this allows and forbids.
    const QString text = value.toString();
    return text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0
        || text == QLatin1String("1");
}
