// SPDX-License-Identifier: BSD-3-Clause
#include "settingsrelay.h"

#include "tests/clients/mocktimedate.h"
#include "tests/clients/timezonepushes.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <QFile>

using Maemo::Timed::WallClock::Info;

namespace {

const QString service = QStringLiteral("org.freedesktop.timedate1");
const QString zoneProperty = QStringLiteral("Timezone");
const QString oslo = QStringLiteral("Europe/Oslo");
const QString lima = QStringLiteral("America/Lima");

} // namespace

class TestSettingsRelay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void relayIsAChildOfItsListener();
    void changesOfTheZoneAreRelayed();
    void otherChangesAreNot_data();
    void otherChangesAreNot();
    void zoneToldWithoutItsValueIsRead();
    void zoneThatCannotBeReadIsThatOfTheLink();
    void relayMayGoBeforeTheAnswer();
    void serviceThatComesLaterIsHeard();
    void nothingIsHeardBeforeListening();

private:
    std::unique_ptr<PrivateBus> m_bus;
};

void TestSettingsRelay::initTestCase()
{
    m_bus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
}

void TestSettingsRelay::relayIsAChildOfItsListener()
{
    QObject listener;
    const auto *const relay = new SettingsRelay(&listener);
    QCOMPARE(relay->parent(), &listener);
}

void TestSettingsRelay::changesOfTheZoneAreRelayed()
{
    MockTimedate host(oslo);
    SettingsRelay relay(nullptr);
    QVERIFY(relay.listen());
    QStringList heard;
    connect(&relay, &SettingsRelay::settingsChanged, this,
        [&heard](const Info &info, bool timeChanged) {
            heard.append(QStringLiteral("%1 %2").arg(info.humanReadableTz()).arg(timeChanged));
        });
    receiveSignals();
    host.setZone(lima);
    host.setZone(QString());
    host.announce(service, {{QStringLiteral("NTP"), true}, {zoneProperty, oslo}});
    receiveSignals();
    QCOMPARE(heard,
        QStringList(
            {lima + QStringLiteral(" 0"), QStringLiteral(" 0"), oslo + QStringLiteral(" 0")}));
}

void TestSettingsRelay::otherChangesAreNot_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QVariantMap>("changed");
    QTest::newRow("another property") << service << QVariantMap{{QStringLiteral("NTP"), true}};
    QTest::newRow("another interface")
        << QStringLiteral("org.freedesktop.other") << QVariantMap{{zoneProperty, lima}};
    QTest::newRow("nothing") << service << QVariantMap();
}

void TestSettingsRelay::otherChangesAreNot()
{
    QFETCH(QString, interface);
    QFETCH(QVariantMap, changed);
    MockTimedate host(oslo);
    SettingsRelay relay(nullptr);
    QVERIFY(relay.listen());
    QSignalSpy spy(&relay, &SettingsRelay::settingsChanged);
    receiveSignals();
    host.announce(interface, changed);
    receiveSignals();
    QCOMPARE(spy.size(), 0);
    // It hears well.
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(spy.size(), 1);
}

void TestSettingsRelay::zoneToldWithoutItsValueIsRead()
{
    MockTimedate host(oslo);
    SettingsRelay relay(nullptr);
    QVERIFY(relay.listen());
    QSignalSpy spy(&relay, &SettingsRelay::settingsChanged);
    receiveSignals();
    host.announce(service, {}, {QStringLiteral("NTP")});
    host.announce(QStringLiteral("org.freedesktop.other"), {}, {zoneProperty});
    host.invalidateZone(lima);
    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<Info>().humanReadableTz(), lima);
    QCOMPARE(spy.first().last().toBool(), false);
    QCOMPARE(host.reads(), 1);
    QTRY_VERIFY(relay.children().isEmpty());
}

void TestSettingsRelay::zoneThatCannotBeReadIsThatOfTheLink()
{
    MockTimedate host(oslo);
    host.failReads();
    SettingsRelay relay(nullptr);
    QVERIFY(relay.listen());
    QSignalSpy spy(&relay, &SettingsRelay::settingsChanged);
    receiveSignals();
    host.invalidateZone(lima);
    QTRY_COMPARE(host.reads(), 1);
    QTRY_VERIFY(relay.children().isEmpty());
    QCOMPARE(spy.size(), 0);

    QVERIFY(QFile::link(
        QStringLiteral("/usr/share/zoneinfo/Asia/Tokyo"), QStringLiteral("/etc/localtime")));
    host.invalidateZone(lima);
    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<Info>().humanReadableTz(), QStringLiteral("Asia/Tokyo"));
}

void TestSettingsRelay::relayMayGoBeforeTheAnswer()
{
    const MockTimedate host(oslo);
    {
        SettingsRelay relay(nullptr);
        QVERIFY(QMetaObject::invokeMethod(&relay, "onPropertiesChanged", Qt::DirectConnection,
            Q_ARG(QString, service), Q_ARG(QVariantMap, QVariantMap()),
            Q_ARG(QStringList, QStringList{zoneProperty})));
        QVERIFY(!relay.children().isEmpty());
    }
    QTRY_COMPARE(host.reads(), 1);
    receiveSignals();
}

void TestSettingsRelay::serviceThatComesLaterIsHeard()
{
    SettingsRelay relay(nullptr);
    QVERIFY(relay.listen());
    QSignalSpy spy(&relay, &SettingsRelay::settingsChanged);
    receiveSignals();
    MockTimedate host(oslo);
    host.setZone(lima);
    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<Info>().humanReadableTz(), lima);
}

void TestSettingsRelay::nothingIsHeardBeforeListening()
{
    MockTimedate host(oslo);
    SettingsRelay relay(nullptr);
    QSignalSpy spy(&relay, &SettingsRelay::settingsChanged);
    receiveSignals();
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(spy.size(), 0);
}

LUM_TEST_MAIN(TestSettingsRelay)
#include "tst_settingsrelay.moc"
