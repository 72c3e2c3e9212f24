// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/clients/clienttest.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>

/// The calls that pass these zones on, one after the other.
inline QStringList pushes(const QStringList &zones)
{
    QStringList calls;
    for (const QString &zone : zones)
        calls.append(callText("alarm", "android.app.IAlarmManager", 3, body().string16(zone)));
    return calls;
}

/// Returns when what the bus has passed on until now has reached the objects of this thread.
inline void receiveSignals()
{
    QDBusConnection::systemBus().interface()->isServiceRegistered(QStringLiteral("a.b"));
    QCoreApplication::processEvents();
}
