// SPDX-License-Identifier: BSD-3-Clause
#include <timed-qt5/interface.h>
#include <timed-qt5/wallclock.h>

#include "tests/clients/mocktimedate.h"
#include "tests/clients/timezonepushes.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <QDBusReply>

using Maemo::Timed::Interface;
using Maemo::Timed::WallClock::Info;

namespace {

const QString getInfo = QStringLiteral("get_wall_clock_info");
const QString oslo = QStringLiteral("Europe/Oslo");
const QString lima = QStringLiteral("America/Lima");

class Listener : public QObject
{
    Q_OBJECT

public:
    QStringList heard;

    bool listen() { return Interface().settings_changed_connect(this, slotName()); }
    bool stopListening() { return Interface().settings_changed_disconnect(this, slotName()); }

public Q_SLOTS:
    void onSettingsChanged(const Maemo::Timed::WallClock::Info &info, bool timeChanged)
    {
        heard.append(QStringLiteral("%1 %2").arg(info.humanReadableTz()).arg(timeChanged));
    }

private:
    static const char *slotName()
    {
        return SLOT(onSettingsChanged(Maemo::Timed::WallClock::Info, bool));
    }
};

QString told(const QString &zone)
{
    return zone + QStringLiteral(" 0");
}

} // namespace

class TestInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void zoneIsReadEachTime();
    void failedReadGivesTheErrorAndADefault_data();
    void failedReadGivesTheErrorAndADefault();
    void unknownMethodIsAnError();
    void everyListenerIsTold();
    void connectionOutlivesTheInterface();
    void nothingIsToldAfterTheDisconnect();
    void disconnectNeedsAConnection();
    void listenerMayGo();
    void missingBusIsToldToTheCaller();

private:
    std::unique_ptr<PrivateBus> m_bus;
};

void TestInterface::initTestCase()
{
    m_bus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
}

void TestInterface::zoneIsReadEachTime()
{
    MockTimedate host(oslo);
    Interface interface;
    const QDBusReply<Info> first = interface.call(getInfo);
    QVERIFY(first.isValid());
    QCOMPARE(first.value().humanReadableTz(), oslo);
    host.setZone(lima);
    const QDBusReply<Info> second = interface.call(getInfo);
    QCOMPARE(second.value().humanReadableTz(), lima);
    QCOMPARE(host.reads(), 2);
}

void TestInterface::failedReadGivesTheErrorAndADefault_data()
{
    QTest::addColumn<bool>("hasService");
    QTest::addColumn<QString>("error");
    QTest::newRow("refused") << true << QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");
    QTest::newRow("no service") << false
                                << QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown");
}

void TestInterface::failedReadGivesTheErrorAndADefault()
{
    QFETCH(bool, hasService);
    QFETCH(QString, error);
    std::unique_ptr<MockTimedate> host;
    if (hasService) {
        host = std::make_unique<MockTimedate>(oslo);
        host->failReads();
    }
    const QDBusReply<Info> reply = Interface().call(getInfo);
    QVERIFY(!reply.isValid());
    QCOMPARE(reply.error().name(), error);
    QCOMPARE(reply.value().humanReadableTz(), QString());
}

void TestInterface::unknownMethodIsAnError()
{
    const MockTimedate host(oslo);
    const QDBusMessage reply = Interface().call(QStringLiteral("get_wall_clock_information"));
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    QCOMPARE(host.reads(), 0);
}

void TestInterface::everyListenerIsTold()
{
    MockTimedate host(oslo);
    Listener first;
    Listener second;
    QVERIFY(first.listen());
    QVERIFY(second.listen());
    receiveSignals();
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(first.heard, QStringList{told(lima)});
    QCOMPARE(second.heard, QStringList{told(lima)});

    QVERIFY(first.stopListening());
    host.setZone(oslo);
    receiveSignals();
    QCOMPARE(first.heard, QStringList{told(lima)});
    QCOMPARE(second.heard, QStringList({told(lima), told(oslo)}));
}

void TestInterface::connectionOutlivesTheInterface()
{
    MockTimedate host(oslo);
    Listener listener;
    {
        Interface interface;
        QVERIFY(interface.settings_changed_connect(
            &listener, SLOT(onSettingsChanged(Maemo::Timed::WallClock::Info, bool))));
    }
    receiveSignals();
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(listener.heard, QStringList{told(lima)});
}

void TestInterface::nothingIsToldAfterTheDisconnect()
{
    MockTimedate host(oslo);
    Listener listener;
    QVERIFY(listener.listen());
    receiveSignals();
    QVERIFY(listener.stopListening());
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(listener.heard, QStringList());
    QVERIFY(listener.listen());
    receiveSignals();
    host.setZone(oslo);
    receiveSignals();
    QCOMPARE(listener.heard, QStringList{told(oslo)});
}

void TestInterface::disconnectNeedsAConnection()
{
    Listener listener;
    QVERIFY(!listener.stopListening());
    QVERIFY(listener.listen());
    QVERIFY(listener.stopListening());
    QVERIFY(!listener.stopListening());
}

void TestInterface::listenerMayGo()
{
    MockTimedate host(oslo);
    {
        Listener listener;
        QVERIFY(listener.listen());
        receiveSignals();
    }
    Listener other;
    QVERIFY(other.listen());
    receiveSignals();
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(other.heard, QStringList{told(lima)});
}

void TestInterface::missingBusIsToldToTheCaller()
{
    m_bus.reset();
    Listener listener;
    QVERIFY(!listener.listen());
    const QDBusReply<Info> reply = Interface().call(getInfo);
    QCOMPARE(reply.error().name(), QStringLiteral("org.freedesktop.DBus.Error.Disconnected"));
    QCOMPARE(reply.value().humanReadableTz(), QString());
}

LUM_TEST_MAIN(TestInterface)
#include "tst_interface.moc"
