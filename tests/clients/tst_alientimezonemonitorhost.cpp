// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alientimezonemonitor.h"

#include "tests/clients/clienttest.h"
#include "tests/clients/mocktimedate.h"
#include "tests/clients/timezonepushes.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QtTest>

#include <memory>
#include <optional>

using FakeBinder::Notice;

namespace {

const QString alarmService = QStringLiteral("alarm");
const QString active = QStringLiteral("active");
const QString timedate = QStringLiteral("org.freedesktop.timedate1");
const QString oslo = QStringLiteral("Europe/Oslo");
const QString lima = QStringLiteral("America/Lima");

} // namespace

// What the host's clock settings do to the monitor.
class TestAlienTimezoneMonitorHost : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void changeBesidesTheFirstReadIsNotLost();
    void otherChangesAreIgnored_data();
    void otherChangesAreIgnored();
    void otherSenderIsIgnored();
    void unknownZoneIsPushedAsAnEmptyString_data();
    void unknownZoneIsPushedAsAnEmptyString();
    void zoneOfAHostThatAnswersLaterIsPushed();
    void zoneToldWithoutItsValueIsPushed();
    void hostThatDoesNotAnswerGivesTheZoneOfItsLink();
    void listensToANewOwnerOfTheName();
    void zoneGoesOutAsLatin1();
};

void TestAlienTimezoneMonitorHost::changeBesidesTheFirstReadIsNotLost()
{
    MockTimedate host(oslo);
    host.changeDuringNextRead(lima);
    FakeBinder::registerService(alarmService, {}, Notice::None);
    m_unit->startOutAs(active);
    AlienTimezoneMonitor monitor;
    QCOMPARE(takeCalls(), QStringList());
    // Qt D-Bus holds back what comes before the event loop first runs.
    QTRY_COMPARE(FakeBinder::requests().size(), 1);
    QCOMPARE(takeCalls(), pushes({lima}));
}

void TestAlienTimezoneMonitorHost::otherChangesAreIgnored_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QVariantMap>("changed");
    QTest::addColumn<QString>("path");
    const QString path = MockTimedate::objectPath();
    const QVariantMap zone{{QStringLiteral("Timezone"), lima}};
    QTest::newRow("other property")
        << timedate << QVariantMap{{QStringLiteral("NTP"), true}} << path;
    QTest::newRow("no property") << timedate << QVariantMap() << path;
    QTest::newRow("other interface") << QStringLiteral("org.freedesktop.hostname1") << zone << path;
    QTest::newRow("other object") << timedate << zone << QStringLiteral("/org/freedesktop/time");
    QTest::newRow("object below") << timedate << zone << path + QStringLiteral("/a");
}

void TestAlienTimezoneMonitorHost::otherChangesAreIgnored()
{
    QFETCH(QString, interface);
    QFETCH(QVariantMap, changed);
    QFETCH(QString, path);
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    host.announce(interface, changed, {}, path);
    receiveSignals();
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienTimezoneMonitorHost::otherSenderIsIgnored()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    receiveSignals();
    QDBusConnection forger =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("forger"));
    QDBusMessage signal = QDBusMessage::createSignal(MockTimedate::objectPath(),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal.setArguments({timedate, QVariantMap{{QStringLiteral("Timezone"), lima}}, QStringList()});
    QVERIFY(forger.send(signal));
    // Answered when the bus has passed on what came before.
    forger.interface()->isServiceRegistered(timedate);
    QDBusConnection::disconnectFromBus(forger.name());
    receiveSignals();
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienTimezoneMonitorHost::unknownZoneIsPushedAsAnEmptyString_data()
{
    QTest::addColumn<bool>("hasHost");
    QTest::newRow("no answer") << false;
    QTest::newRow("an error") << true;
}

void TestAlienTimezoneMonitorHost::unknownZoneIsPushedAsAnEmptyString()
{
    QFETCH(bool, hasHost);
    std::optional<MockTimedate> host;
    if (hasHost) {
        host.emplace(oslo);
        host->failReads();
    }
    LogCapture log(LogCapture::Level::Default);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    QCOMPARE(takeCalls(), pushes({QStringLiteral("")}));
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienTimezoneMonitorHost::zoneOfAHostThatAnswersLaterIsPushed()
{
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    MockTimedate host(oslo);
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({lima}));
}

void TestAlienTimezoneMonitorHost::zoneToldWithoutItsValueIsPushed()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    receiveSignals();
    host.invalidateZone(lima);
    QTRY_COMPARE(FakeBinder::requests().size(), 1);
    QCOMPARE(takeCalls(), pushes({lima}));
}

void TestAlienTimezoneMonitorHost::hostThatDoesNotAnswerGivesTheZoneOfItsLink()
{
    QVERIFY(QFile::link(
        QStringLiteral("/usr/share/zoneinfo/Europe/Oslo"), QStringLiteral("/etc/localtime")));
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    QCOMPARE(takeCalls(), pushes({oslo}));
}

void TestAlienTimezoneMonitorHost::listensToANewOwnerOfTheName()
{
    auto host = std::make_unique<MockTimedate>(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    // It ends when nobody asks, and is started again by the next change.
    host.reset();
    host = std::make_unique<MockTimedate>(oslo);
    host->setZone(lima);
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({lima}));
}

void TestAlienTimezoneMonitorHost::zoneGoesOutAsLatin1()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    // What Latin-1 lacks becomes a question mark.
    host.setZone(QStringLiteral(u"Asia/\u6771\u4eac"));
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({QStringLiteral("Asia/??")}));
}

LUM_TEST_MAIN(TestAlienTimezoneMonitorHost)
#include "tst_alientimezonemonitorhost.moc"
