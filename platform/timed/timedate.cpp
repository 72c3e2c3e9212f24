// SPDX-License-Identifier: BSD-3-Clause
#include "timedate.h"

#include <QDBusReply>
#include <QDBusVariant>
#include <QFile>

namespace {

// localtime(5)
constexpr char zoneFolder[] = "/zoneinfo/";

QString zoneOfLink()
{
    const QString target = QFile::symLinkTarget(QStringLiteral("/etc/localtime"));
    const QString folder = QLatin1String(zoneFolder);
    const int begin = target.indexOf(folder);
    return begin < 0 ? QString() : target.mid(begin + folder.size());
}

} // namespace

QDBusMessage Timedate::zoneQuestion()
{
    QDBusMessage get = QDBusMessage::createMethodCall(QLatin1String(service), QLatin1String(path),
        QLatin1String(propertiesInterface), QStringLiteral("Get"));
    get << QString(QLatin1String(service)) << QString(QLatin1String(timezoneProperty));
    return get;
}

QString Timedate::zoneOf(const QDBusMessage &answer)
{
    const QDBusReply<QDBusVariant> zone = answer;
    return zone.isValid() ? zone.value().variant().toString() : zoneOfLink();
}
