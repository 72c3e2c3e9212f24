// SPDX-License-Identifier: BSD-3-Clause
#include "tests/binder/runtimetest.h"
#include "tests/binder/testservices.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

namespace {

const QString serviceName = QStringLiteral("alien.test");
const QString active = QStringLiteral("active");
const QString activating = QStringLiteral("activating");
const QString deactivating = QStringLiteral("deactivating");
const QString inactive = QStringLiteral("inactive");
const QString reloading = QStringLiteral("reloading");
const char registering[] = "debug com.tovra.lumd.service Registering Alien service for alien.test";

const QStringList publication = texts({"servicemanager_new /dev/puddlejumper",
    "servicemanager_new_local_object test.IService", "servicename_new alien.test"});

const QStringList withdrawal = texts({"servicename_unref alien.test",
    "local_object_drop test.IService", "servicemanager_unref /dev/puddlejumper"});

} // namespace

class TestAlienBinderService : public RuntimeTest
{
    Q_OBJECT

private Q_SLOTS:
    void publishesAtOnceWhenTheRuntimeComesUpOrIsUp_data();
    void publishesAtOnceWhenTheRuntimeComesUpOrIsUp();
    void staysStoppedInOtherStates_data();
    void staysStoppedInOtherStates();
    void staysStoppedWhenTheUnitCannotBeLoaded();
    void publishesWhenTheRuntimeIsActivating();
    void secondActivatingPublishesNothingMore();
    void staysPublishedUntilDeactivating_data();
    void staysPublishedUntilDeactivating();
    void withdrawsInOrderWhenDeactivating();
    void publishesAgainAfterTheRuntimeWentDown();
    void deactivatingWhenStoppedStopsNothing();
    void unseenActivatingLeavesItUnpublishedUnlessForced();
    void stopGoesThroughTheVirtualTable();
    void stopMayBeCalledAtAnyTime();
    void destructorWithdrawsInOrder();
    void missingDeviceIsTriedAgainAtTheNextActivating();
    void missingNameAloneIsFilledIn();
    void missingObjectIsFilledIn();
    void debugLinesAreOffByDefault();
};

void TestAlienBinderService::publishesAtOnceWhenTheRuntimeComesUpOrIsUp_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("activating") << activating;
    QTest::newRow("active") << active;
}

void TestAlienBinderService::publishesAtOnceWhenTheRuntimeComesUpOrIsUp()
{
    QFETCH(QString, state);
    QVERIFY(m_unit->become(state));
    FakeBinder::clearLedger();
    LogCapture log;

    const PlainService service;

    QCOMPARE(FakeBinder::ledger(), publication);
    QCOMPARE(log.lines(), texts({registering}));
    QCOMPARE(FakeBinder::published().size(), 1);
    QCOMPARE(FakeBinder::published().first().name, serviceName);
    QCOMPARE(FakeBinder::published().first().interface, QStringLiteral("test.IService"));
    QVERIFY(FakeBinder::published().first().objectId != 0);
}

void TestAlienBinderService::staysStoppedInOtherStates_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state :
        {"inactive", "deactivating", "failed", "reloading", "maintenance", "Active", ""})
        QTest::addRow("state %s", state) << QString::fromLatin1(state);
}

void TestAlienBinderService::staysStoppedInOtherStates()
{
    QFETCH(QString, state);
    QVERIFY(m_unit->become(state));
    LogCapture log;

    PlainService service;
    service.followState();

    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderService::staysStoppedWhenTheUnitCannotBeLoaded()
{
    m_unit->systemd().failLoadUnit(QStringLiteral("Unit not found."));
    const PlainService service;
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestAlienBinderService::publishesWhenTheRuntimeIsActivating()
{
    const PlainService service;
    QCOMPARE(FakeBinder::ledger(), QStringList());
    LogCapture log;

    QVERIFY(m_unit->become(activating));

    QCOMPARE(FakeBinder::ledger(), publication);
    QVERIFY(log.lines().contains(QString::fromLatin1(registering)));
}

void TestAlienBinderService::secondActivatingPublishesNothingMore()
{
    m_unit->startOutAs(activating);
    PlainService service;
    FakeBinder::clearLedger();
    LogCapture log;

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(activating));
    service.followState();
    service.forceStart();

    QCOMPARE(FakeBinder::ledger(), QStringList());
    QVERIFY(!log.lines().contains(QString::fromLatin1(registering)));
}

void TestAlienBinderService::staysPublishedUntilDeactivating_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"active", "inactive", "failed", "reloading", "maintenance", ""})
        QTest::addRow("state %s", state) << QString::fromLatin1(state);
}

void TestAlienBinderService::staysPublishedUntilDeactivating()
{
    QFETCH(QString, state);
    QVERIFY(m_unit->become(activating));
    const PlainService service;
    FakeBinder::clearLedger();

    QVERIFY(m_unit->become(state));

    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(FakeBinder::published().size(), 1);
}

void TestAlienBinderService::withdrawsInOrderWhenDeactivating()
{
    m_unit->startOutAs(active);
    const PlainService service;
    FakeBinder::clearLedger();
    LogCapture log;

    QVERIFY(m_unit->become(deactivating));

    QCOMPARE(FakeBinder::ledger(), withdrawal);
    QCOMPARE(FakeBinder::published().size(), 0);
    QCOMPARE(log.lines(),
        texts({R"(debug com.tovra.lumd.service Alien Dalvik is "deactivating" ( "test" ))"}));
}

void TestAlienBinderService::publishesAgainAfterTheRuntimeWentDown()
{
    m_unit->startOutAs(active);
    const PlainService service;
    QVERIFY(m_unit->become(deactivating));
    QVERIFY(m_unit->become(inactive));
    FakeBinder::clearLedger();

    QVERIFY(m_unit->become(activating));

    QCOMPARE(FakeBinder::ledger(), publication);
}

void TestAlienBinderService::deactivatingWhenStoppedStopsNothing()
{
    EchoService service;
    QVERIFY(m_unit->become(deactivating));
    QCOMPARE(service.stops, 1);
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestAlienBinderService::unseenActivatingLeavesItUnpublishedUnlessForced()
{
    PlainService service;
    QVERIFY(m_unit->become(active));
    service.followState();
    QCOMPARE(FakeBinder::ledger(), QStringList());

    service.forceStart();

    QCOMPARE(FakeBinder::ledger(), publication);
}

void TestAlienBinderService::stopGoesThroughTheVirtualTable()
{
    m_unit->startOutAs(active);
    EchoService service;
    QVERIFY(m_unit->become(deactivating));
    QCOMPARE(service.stops, 1);
    QCOMPARE(FakeBinder::published().size(), 0);
}

void TestAlienBinderService::stopMayBeCalledAtAnyTime()
{
    PlainService service;
    service.stop();
    QCOMPARE(FakeBinder::ledger(), QStringList());

    service.forceStart();
    FakeBinder::clearLedger();
    service.stop();
    QCOMPARE(FakeBinder::ledger(), withdrawal);

    service.stop();
    QCOMPARE(FakeBinder::ledger(), withdrawal);
}

void TestAlienBinderService::destructorWithdrawsInOrder()
{
    m_unit->startOutAs(active);
    {
        const EchoService service;
        FakeBinder::clearLedger();
    }
    QCOMPARE(FakeBinder::ledger(), withdrawal);

    // What is gone follows the runtime no more.
    FakeBinder::clearLedger();
    QVERIFY(m_unit->become(activating));
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestAlienBinderService::missingDeviceIsTriedAgainAtTheNextActivating()
{
    FakeBinder::setPresent(false);
    LogCapture log(LogCapture::Level::Default);
    const PlainService service;
    QVERIFY(m_unit->become(activating));
    QCOMPARE(FakeBinder::ledger(), texts({"servicemanager_new /dev/puddlejumper failed"}));
    QCOMPARE(log.lines(),
        texts({"warning com.tovra.lumd.service "
               "Unable to find Alien service manager for alien.test"}));
    FakeBinder::clearLedger();
    FakeBinder::setPresent(true);

    QVERIFY(m_unit->become(active));
    QCOMPARE(FakeBinder::ledger(), QStringList());
    QVERIFY(m_unit->become(activating));

    QCOMPARE(FakeBinder::ledger(), publication);
}

void TestAlienBinderService::missingNameAloneIsFilledIn()
{
    FakeBinder::failServiceNames(true);
    m_unit->startOutAs(activating);
    LogCapture log;
    const PlainService service;
    QCOMPARE(FakeBinder::ledger(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_new_local_object test.IService", "servicename_new alien.test failed"}));
    QCOMPARE(log.lines().last(), QString::fromLatin1(registering));
    FakeBinder::clearLedger();
    FakeBinder::failServiceNames(false);

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(activating));

    QCOMPARE(FakeBinder::ledger(), texts({"servicename_new alien.test"}));
    QCOMPARE(log.lines().count(QString::fromLatin1(registering)), 2);
}

void TestAlienBinderService::missingObjectIsFilledIn()
{
    FakeBinder::failLocalObjects(true);
    m_unit->startOutAs(activating);
    LogCapture log(LogCapture::Level::Default);
    const PlainService service;
    // The name is asked for all the same, and gbinder answers for that.
    QCOMPARE(FakeBinder::ledger(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_new_local_object test.IService failed",
            "servicename_new alien.test failed"}));
    QCOMPARE(log.lines(), QStringList());
    FakeBinder::clearLedger();
    FakeBinder::failLocalObjects(false);

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(activating));

    QCOMPARE(FakeBinder::ledger(), publication.mid(1));
}

void TestAlienBinderService::debugLinesAreOffByDefault()
{
    LogCapture log(LogCapture::Level::Default);
    const PlainService service;
    QVERIFY(m_unit->become(activating));
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestAlienBinderService)
#include "tst_alienbinderservice.moc"
