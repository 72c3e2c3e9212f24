// SPDX-License-Identifier: BSD-3-Clause
#include "tests/binder/runtimeunit.h"

#include "runtime/servicecontroller.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QtTest>

#include <glib.h>

void RuntimeUnit::startOutAs(const QString &state)
{
    m_systemd.setUnitStateSilently(state, QStringLiteral("test"));
}

bool RuntimeUnit::become(const QString &state)
{
    const ServiceController *const controller = ServiceController::instance();
    if (controller->serviceState() == state)
        return true;
    // An answer of the bus tells that it knows what the controller listens to.
    QDBusConnection::systemBus().interface()->isServiceRegistered(QStringLiteral("a.b"));
    m_systemd.setUnitState(state, QStringLiteral("test"));
    return QTest::qWaitFor([=] { return controller->serviceState() == state; }, 10000);
}

bool settle()
{
    bool reached = false;
    const guint source = g_idle_add_full(
        G_PRIORITY_LOW,
        [](gpointer data) -> gboolean {
            *static_cast<bool *>(data) = true;
            return G_SOURCE_REMOVE;
        },
        &reached, nullptr);
    if (!QTest::qWaitFor([&reached] { return reached; }, 10000))
        g_source_remove(source);
    return reached;
}
