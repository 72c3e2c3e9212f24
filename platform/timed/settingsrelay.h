// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "timed-qt5/wallclock.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// Turns timedate1's changes of the time zone into the signal that listeners know. A child of
/// the one listener that it serves.
class SettingsRelay : public QObject
{
    Q_OBJECT

public:
    explicit SettingsRelay(QObject *listener);

    /// Starts to listen on the system bus. False when the bus refused.
    bool listen();

Q_SIGNALS:
    void settingsChanged(const Maemo::Timed::WallClock::Info &info, bool timeChanged);

private Q_SLOTS:
    void onPropertiesChanged(
        const QString &interface, const QVariantMap &changed, const QStringList &invalidated);

private:
    /// Asks for a zone that was announced without its value, and passes it on once answered.
    void readZone();
};
