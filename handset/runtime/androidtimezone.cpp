// SPDX-License-Identifier: BSD-3-Clause
#include "androidtimezone.h"

#include <QFile>
#include <QRegularExpression>

namespace {

bool isInDatabase(const QString &id)
{
    // Android's has the names alone, not the two other counts of leap seconds beside them
    static const QRegularExpression name(QStringLiteral("^(?!posix/|right/)\\w[\\w+/-]*$"));
    QFile file(QStringLiteral("/usr/share/zoneinfo/") + id);
    return name.match(id).hasMatch() && file.open(QIODevice::ReadOnly)
        && file.read(4) == QByteArrayLiteral("TZif");
}

/// Null for what is no offset.
QString offset(const QString &id)
{
    static const QRegularExpression form(QStringLiteral("^GMT([-+])(\\d{1,2})(:?(\\d\\d))?$"));
    const QRegularExpressionMatch match = form.match(id);
    const int hours = match.captured(2).toInt();
    const int minutes = match.captured(4).toInt();
    if (!match.hasMatch() || hours > 23 || minutes > 59)
        return {};
    return QStringLiteral("GMT%1%2:%3")
        .arg(match.captured(1))
        .arg(hours, 2, 10, QLatin1Char('0'))
        .arg(minutes, 2, 10, QLatin1Char('0'));
}

} // namespace

QString androidTimeZone(const QString &id)
{
    if (isInDatabase(id))
        return id;
    const QString found = offset(id);
    return found.isNull() ? QStringLiteral("GMT") : found;
}
