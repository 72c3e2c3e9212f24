// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alientimezonemonitor.h"

#include "tests/clients/clienttest.h"
#include "tests/clients/mocktimedate.h"
#include "tests/clients/timezonepushes.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <memory>

using FakeBinder::Notice;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

const QString alarmService = QStringLiteral("alarm");
const QString active = QStringLiteral("active");
const QString deactivating = QStringLiteral("deactivating");
const QString oslo = QStringLiteral("Europe/Oslo");
const QString lima = QStringLiteral("America/Lima");

} // namespace

class TestAlienTimezoneMonitor : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void runtimeFoundActiveGetsNothingAtFirst();
    void zoneIsPushedAtEachConnect();
    void changeIsPushedAtOnce();
    void sameZoneIsNotPushed();
    void sameZoneIsNotPushedWhenTheClockWasSet();
    void changeWhileTheRuntimeIsDownIsPushedAtTheNextConnect();
    void failedPushIsLoggedAndRepeatedAtTheNextConnect_data();
    void failedPushIsLoggedAndRepeatedAtTheNextConnect();
    void lossOfTheLinkSendsNothing();
    void nothingReachesADestroyedMonitor();
    void lastDisconnectIsNotHeard();
    void pushLeavesNothingBehind();
};

void TestAlienTimezoneMonitor::runtimeFoundActiveGetsNothingAtFirst()
{
    MockTimedate host(oslo);
    FakeBinder::registerService(alarmService, {}, Notice::None);
    m_unit->startOutAs(active);
    AlienTimezoneMonitor monitor;
    QCOMPARE(host.reads(), 1);
    QVERIFY(monitor.client());
    QVERIFY(settle());
    receiveSignals();
    QCOMPARE(takeCalls(), QStringList());

    // The next change reaches it.
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({lima}));
    QCOMPARE(host.reads(), 1);
}

void TestAlienTimezoneMonitor::zoneIsPushedAtEachConnect()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    QSignalSpy links(&monitor, &AlienBinderConnection::connectionChanged);
    LogCapture log(LogCapture::Level::Default);
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    QCOMPARE(takeCalls(), pushes({oslo}));
    QCOMPARE(log.take(), QStringList());

    FakeBinder::killService(alarmService);
    QTRY_COMPARE(links.size(), 2);
    FakeBinder::registerService(alarmService);
    QTRY_COMPARE(links.size(), 3);
    QCOMPARE(takeCalls(), pushes({oslo}));

    QVERIFY(m_unit->become(deactivating));
    QVERIFY(m_unit->become(active));
    QCOMPARE(takeCalls(), pushes({oslo}));
    // Once is enough for the host.
    QCOMPARE(host.reads(), 1);
}

void TestAlienTimezoneMonitor::changeIsPushedAtOnce()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();

    host.setZone(lima);
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({lima}));
    host.setZone(oslo);
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({oslo}));
    host.setZone(QStringLiteral(""));
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({QStringLiteral("")}));
}

void TestAlienTimezoneMonitor::sameZoneIsNotPushed()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();

    host.setZone(oslo);
    receiveSignals();
    QCOMPARE(takeCalls(), QStringList());
    host.setZone(lima);
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(takeCalls(), pushes({lima}));
}

void TestAlienTimezoneMonitor::sameZoneIsNotPushedWhenTheClockWasSet()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();

    // The host's clock settings that timedate1 stands in for tell of the time too.
    const bool timeChanged = true;
    const auto announce = [&](const QString &zone) {
        return QMetaObject::invokeMethod(&monitor, "settingsChanged", Qt::DirectConnection,
            Q_ARG(Maemo::Timed::WallClock::Info, Maemo::Timed::WallClock::Info(zone)),
            Q_ARG(bool, timeChanged));
    };
    QVERIFY(announce(oslo));
    QCOMPARE(takeCalls(), QStringList());
    QVERIFY(announce(lima));
    QCOMPARE(takeCalls(), pushes({lima}));
}

void TestAlienTimezoneMonitor::changeWhileTheRuntimeIsDownIsPushedAtTheNextConnect()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    MockSystemd::settleListeners();
    LogCapture log(LogCapture::Level::Default);

    host.setZone(lima);
    receiveSignals();
    QCOMPARE(takeCalls(), QStringList());
    QVERIFY(m_unit->become(active));
    QCOMPARE(takeCalls(), pushes({lima}));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(host.reads(), 1);
}

void TestAlienTimezoneMonitor::failedPushIsLoggedAndRepeatedAtTheNextConnect_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("dead") << Reply::failure(-32)
                          << texts({"warning com.tovra.lumd.binder Failed to set alien timezone: "
                                    "-32"});
    QTest::newRow("refused") << Reply::failure(5)
                             << texts({"warning com.tovra.lumd.binder Failed to set alien "
                                       "timezone: 5"});
    QTest::newRow("refused with a reply")
        << Reply::failureWith(-5, ParcelWriter().int32(0).bytes())
        << texts({"warning com.tovra.lumd.binder Failed to set alien timezone: -5"});
    QTest::newRow("not answered") << Reply::none()
                                  << texts({"warning com.tovra.lumd.binder Failed to set alien "
                                            "timezone: 0"});
    // An exception of Android's is not looked for.
    QTest::newRow("exception") << Reply::data(ParcelWriter().int32(-1).bytes()) << QStringList();
}

void TestAlienTimezoneMonitor::failedPushIsLoggedAndRepeatedAtTheNextConnect()
{
    QFETCH(Reply, reply);
    QFETCH(QStringList, lines);
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(
        alarmService, [&reply](const FakeBinder::Request &) { return reply; }, Notice::None);
    LogCapture log(LogCapture::Level::Default);
    QVERIFY(m_unit->become(active));
    QCOMPARE(log.take(), lines);
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(log.take(), lines);
    QCOMPARE(takeCalls(), pushes({oslo, lima}));

    // It counts as passed on until then.
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(takeCalls(), QStringList());
    QVERIFY(m_unit->become(deactivating));
    QVERIFY(m_unit->become(active));
    QCOMPARE(takeCalls(), pushes({lima}));
    QVERIFY(m_unit->become(deactivating));
}

void TestAlienTimezoneMonitor::lossOfTheLinkSendsNothing()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    LogCapture log(LogCapture::Level::Default);
    QVERIFY(m_unit->become(deactivating));
    QVERIFY(m_unit->become(QStringLiteral("inactive")));
    QCOMPARE(takeCalls(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienTimezoneMonitor::nothingReachesADestroyedMonitor()
{
    MockTimedate host(oslo);
    auto monitor = std::make_unique<AlienTimezoneMonitor>();
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    takeCalls();
    FakeBinder::clearLedger();
    // A change that is under way when the monitor goes.
    host.setZone(lima);
    monitor.reset();
    receiveSignals();
    host.setZone(oslo);
    receiveSignals();
    QCOMPARE(takeCalls(), QStringList());
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_unref alarm", "remote_object_remove_handler alarm 2",
            "remote_object_unref alarm", "servicemanager_unref /dev/puddlejumper"}));
}

void TestAlienTimezoneMonitor::lastDisconnectIsNotHeard()
{
    MockTimedate host(oslo);
    auto monitor = std::make_unique<AlienTimezoneMonitor>();
    AlienBinderConnection *const link = monitor.get();
    QStringList end;
    LogCapture log;
    log.setListener([&end, link](const QString &line) {
        end.append(line);
        if (QObject::disconnect(link, &AlienBinderConnection::connectionChanged, link, nullptr))
            end.append(QStringLiteral("the link is still heard"));
    });

    monitor.reset();

    log.setListener({});
    QCOMPARE(end, texts({"debug com.tovra.lumd.binder Destroying alarm connection"}));
}

void TestAlienTimezoneMonitor::pushLeavesNothingBehind()
{
    MockTimedate host(oslo);
    AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    FakeBinder::clearLedger();
    host.setZone(lima);
    receiveSignals();
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request alarm", "client_transact_sync_reply alarm 3",
            "local_request_unref alarm", "remote_reply_unref alarm"}));
}

LUM_TEST_MAIN(TestAlienTimezoneMonitor)
#include "tst_alientimezonemonitor.moc"
