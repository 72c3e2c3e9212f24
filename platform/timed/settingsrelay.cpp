// SPDX-License-Identifier: BSD-3-Clause
#include "settingsrelay.h"

#include "timedate.h"

#include <QDBusConnection>

SettingsRelay::SettingsRelay(QObject *listener) : QObject(listener) { }

bool SettingsRelay::listen()
{
    return QDBusConnection::systemBus().connect(QLatin1String(Timedate::service),
        QLatin1String(Timedate::path), QLatin1String(Timedate::propertiesInterface),
        QStringLiteral("PropertiesChanged"), this,
        SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
}

void SettingsRelay::onPropertiesChanged(
    const QString &interface, const QVariantMap &changed, const QStringList &invalidated)
{
    Q_UNUSED(invalidated)
    const auto zone = changed.constFind(QLatin1String(Timedate::timezoneProperty));
    if (interface == QLatin1String(Timedate::service) && zone != changed.constEnd())
        Q_EMIT settingsChanged(Maemo::Timed::WallClock::Info(zone->toString()), false);
}
