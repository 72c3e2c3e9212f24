// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

class TestPrivateBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSystemBusIsFoundAtTheDefaultAddress();
    void theUserBusIsAtTheAddressOfItsUser();
    void twoBusesKnowNothingOfEachOther();
    void withoutABusThereIsNone();
    void aStoppedBusIsGone();
};

void TestPrivateBus::theSystemBusIsFoundAtTheDefaultAddress()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    QVERIFY(QDBusConnection::systemBus().isConnected());
    QVERIFY(QDBusConnection::systemBus().registerService(QStringLiteral("com.tovra.lumd")));
}

void TestPrivateBus::theUserBusIsAtTheAddressOfItsUser()
{
    const PrivateBus bus(PrivateBus::Kind::User, 1234);
    QCOMPARE(bus.address(), QStringLiteral("unix:path=/run/user/1234/dbus/user_bus_socket"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

void TestPrivateBus::twoBusesKnowNothingOfEachOther()
{
    const PrivateBus system(PrivateBus::Kind::System);
    const PrivateBus user(PrivateBus::Kind::User, 0);
    QDBusConnection one = QDBusConnection::systemBus();
    QDBusConnection other = QDBusConnection::connectToBus(user.address(), QStringLiteral("user"));
    QVERIFY(one.registerService(QStringLiteral("org.example")));
    QVERIFY(!other.interface()->isServiceRegistered(QStringLiteral("org.example")).value());
    QVERIFY(other.registerService(QStringLiteral("org.example")));
}

void TestPrivateBus::withoutABusThereIsNone()
{
    QVERIFY(!QDBusConnection::systemBus().isConnected());
}

void TestPrivateBus::aStoppedBusIsGone()
{
    PrivateBus bus(PrivateBus::Kind::System);
    QVERIFY(QDBusConnection::systemBus().isConnected());
    bus.stop();
    QTRY_VERIFY(!QDBusConnection::systemBus().isConnected());
}

LUM_TEST_MAIN(TestPrivateBus)
#include "tst_privatebus.moc"
