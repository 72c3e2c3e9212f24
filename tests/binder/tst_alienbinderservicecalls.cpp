// SPDX-License-Identifier: BSD-3-Clause
#include "tests/binder/runtimetest.h"
#include "tests/binder/testservices.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::ParcelWriter;

namespace {

const QString serviceName = QStringLiteral("alien.test");
const QString active = QStringLiteral("active");
const QString deactivating = QStringLiteral("deactivating");

const char notImplemented[] =
    "critical com.tovra.lumd.service ProcessRequest not implemented for  alien.test";

FakeBinder::Call call(quint32 code, qint32 value, quint32 flags = 0)
{
    FakeBinder::Call call;
    call.code = code;
    call.interface = QStringLiteral("test.IService");
    call.payload = ParcelWriter().int32(value).bytes();
    call.flags = flags;
    // No outcome of the base class, so that a status that was not stored shows.
    call.initialStatus = -99;
    return call;
}

} // namespace

class TestAlienBinderServiceCalls : public RuntimeTest
{
    Q_OBJECT

private Q_SLOTS:
    void requestReachesProcessRequest();
    void unhandledRequestIsStatusOneWithItsReply();
    void onewayRequestHasNoReply_data();
    void onewayRequestHasNoReply();
    void onlyTheLowestFlagMeansOneway();
    void baseRefusesEveryRequest();
    void baseRefusesOnewayRequestsToo();
    void overriddenOnTransactGetsTheCallAsItCame();
    void withdrawnServiceTakesNoCalls();
};

void TestAlienBinderServiceCalls::requestReachesProcessRequest()
{
    m_unit->startOutAs(active);
    EchoService service;
    FakeBinder::clearLedger();

    const FakeBinder::Answer answer = FakeBinder::transact(serviceName, call(3, 41));

    QCOMPARE(service.lastCode, 3U);
    QCOMPARE(service.lastValue, 41);
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 0);
    QVERIFY(answer.hasReply);
    QCOMPARE(answer.bytes, ParcelWriter().int32(42).bytes());
    QCOMPARE(FakeBinder::ledger(), texts({"local_object_new_reply test.IService"}));
}

void TestAlienBinderServiceCalls::unhandledRequestIsStatusOneWithItsReply()
{
    m_unit->startOutAs(active);
    EchoService service;
    service.handles = false;

    const FakeBinder::Answer answer = FakeBinder::transact(serviceName, call(3, 41));

    QCOMPARE(answer.status, 1);
    QVERIFY(answer.hasReply);
    QCOMPARE(answer.bytes, ParcelWriter().int32(42).bytes());
}

void TestAlienBinderServiceCalls::onewayRequestHasNoReply_data()
{
    QTest::addColumn<quint32>("flags");
    QTest::addColumn<bool>("handles");
    QTest::addColumn<int>("status");
    QTest::newRow("handled") << quint32(GBINDER_TX_FLAG_ONEWAY) << true << 0;
    QTest::newRow("not handled") << quint32(GBINDER_TX_FLAG_ONEWAY) << false << 1;
    QTest::newRow("with other flags") << 0x11U << true << 0;
}

void TestAlienBinderServiceCalls::onewayRequestHasNoReply()
{
    QFETCH(quint32, flags);
    QFETCH(bool, handles);
    QFETCH(int, status);
    QVERIFY(m_unit->become(active));
    EchoService service;
    service.handles = handles;
    FakeBinder::clearLedger();

    const FakeBinder::Answer answer = FakeBinder::transact(serviceName, call(4, 5, flags));

    // What the service writes goes nowhere.
    QCOMPARE(service.lastCode, 4U);
    QCOMPARE(service.lastValue, 5);
    QCOMPARE(answer.status, status);
    QVERIFY(!answer.hasReply);
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestAlienBinderServiceCalls::onlyTheLowestFlagMeansOneway()
{
    m_unit->startOutAs(active);
    EchoService service;
    const FakeBinder::Answer answer = FakeBinder::transact(serviceName, call(4, 5, 0x10));
    QVERIFY(answer.hasReply);
    QCOMPARE(answer.bytes, ParcelWriter().int32(6).bytes());
}

void TestAlienBinderServiceCalls::baseRefusesEveryRequest()
{
    m_unit->startOutAs(active);
    const PlainService service;
    LogCapture log(LogCapture::Level::Default);

    const FakeBinder::Answer answer = FakeBinder::transact(serviceName, call(3, 41));

    QCOMPARE(answer.status, 1);
    QVERIFY(answer.hasReply);
    QCOMPARE(answer.bytes, QByteArray());
    QCOMPARE(log.lines(), texts({notImplemented}));
}

void TestAlienBinderServiceCalls::baseRefusesOnewayRequestsToo()
{
    m_unit->startOutAs(active);
    const PlainService service;
    LogCapture log(LogCapture::Level::Default);

    const FakeBinder::Answer answer =
        FakeBinder::transact(serviceName, call(3, 41, GBINDER_TX_FLAG_ONEWAY));

    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 1);
    QVERIFY(!answer.hasReply);
    QCOMPARE(log.lines(), texts({notImplemented}));
}

void TestAlienBinderServiceCalls::overriddenOnTransactGetsTheCallAsItCame()
{
    m_unit->startOutAs(active);
    RawService service;
    FakeBinder::clearLedger();

    const FakeBinder::Answer answer = FakeBinder::transact(serviceName, call(0x5f4e5446, 1, 0x11));

    QCOMPARE(service.interface, QStringLiteral("test.IService"));
    QCOMPARE(service.lastCode, 0x5f4e5446U);
    QCOMPARE(service.lastFlags, 0x11U);
    QCOMPARE(service.lastStatus, -99);
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 77);
    QVERIFY(!answer.hasReply);
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestAlienBinderServiceCalls::withdrawnServiceTakesNoCalls()
{
    m_unit->startOutAs(active);
    EchoService service;
    const quint32 object = FakeBinder::published().first().objectId;
    QVERIFY(m_unit->become(deactivating));

    QVERIFY(!FakeBinder::transact(serviceName, call(3, 41)).delivered);
    QVERIFY(!FakeBinder::transactObject(object, call(3, 41)).delivered);
    QCOMPARE(service.lastCode, 0U);
}

LUM_TEST_MAIN(TestAlienBinderServiceCalls)
#include "tst_alienbinderservicecalls.moc"
