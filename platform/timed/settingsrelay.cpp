// SPDX-License-Identifier: BSD-3-Clause
#include "settingsrelay.h"

#include "timedate.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>

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
    if (interface != QLatin1String(Timedate::service))
        return;
    const QString property = QLatin1String(Timedate::timezoneProperty);
    const auto zone = changed.constFind(property);
    if (zone != changed.constEnd())
        Q_EMIT settingsChanged(Maemo::Timed::WallClock::Info(zone->toString()), false);
    else if (invalidated.contains(property))
        readZone();
}

void SettingsRelay::readZone()
{
    auto *const watcher = new QDBusPendingCallWatcher(
        QDBusConnection::systemBus().asyncCall(Timedate::zoneQuestion()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QString zone = Timedate::zoneOf(watcher->reply());
        if (!zone.isNull())
            Q_EMIT settingsChanged(Maemo::Timed::WallClock::Info(zone), false);
    });
}
