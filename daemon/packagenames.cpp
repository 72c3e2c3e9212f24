// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/packagenames.h"

QString packageNameFromFile(const QString &path)
{
    QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    if (name.endsWith(QLatin1String(".apk")))
        name.truncate(name.lastIndexOf(QLatin1Char('.')));
    const int dash = name.indexOf(QLatin1Char('-'));
    return dash < 0 ? name : name.left(dash);
}
