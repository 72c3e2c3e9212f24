// SPDX-License-Identifier: BSD-3-Clause
#include "tests/runtime/controllertest.h"

#include "runtime/servicecontroller.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QtTest>

void ControllerTest::initTestCase()
{
    m_bus.emplace(PrivateBus::Kind::System);
    m_systemd.emplace();
}

void ControllerTest::cleanupTestCase()
{
    m_systemd.reset();
    m_bus.reset();
}

ServiceController *ControllerTest::listeningController()
{
    ServiceController *const controller = ServiceController::instance();
    MockSystemd::settleListeners();
    return controller;
}

bool ControllerTest::fence()
{
    // Signals arrive in the order in which they were sent: the one that flips the flag comes
    // behind all others.
    ServiceController *const controller = listeningController();
    const bool flipped = !controller->serviceEnabled();
    m_systemd->setUnitFileState(flipped ? QStringLiteral("enabled") : QStringLiteral("disabled"));
    return QTest::qWaitFor([=] { return controller->serviceEnabled() == flipped; }, 10000);
}

QStringList ControllerTest::requests()
{
    // An answered call on the same connection has all requests before it on the other side.
    QDBusMessage last = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.systemd1"),
        QStringLiteral("/org/freedesktop/systemd1"),
        QStringLiteral("org.freedesktop.systemd1.Manager"), QStringLiteral("TestFence"));
    QDBusConnection::systemBus().call(last);
    QStringList calls = m_systemd->callTexts();
    if (calls.isEmpty() || calls.takeLast() != QLatin1String("TestFence()"))
        return {QStringLiteral("the last call did not arrive")};
    return calls;
}
