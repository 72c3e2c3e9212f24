// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienactivitymanager.h"

#include "clients/alienintent.h"
#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;

namespace {

const QString service = QStringLiteral("activity");
const QString active = QStringLiteral("active");
const QString app = QStringLiteral("com.foo");
const QString action = QStringLiteral("android.intent.action.VIEW");
const QString type = QStringLiteral("text/plain");
constexpr char unsupported[] = "critical com.tovra.lumd.binder Unsupported android SDK version!";

QString activityCall(quint32 code, const ParcelWriter &body)
{
    return callText("activity", "android.app.IActivityManager", code, body);
}

AlienIntent viewIntent()
{
    AlienIntent intent(action);
    intent.data = QUrl(QStringLiteral("content://a/b"));
    intent.type = type;
    intent.flags = 0x10000000;
    return intent;
}

ParcelWriter startBody(bool hasIdentifier)
{
    ParcelWriter writer = body();
    writer.nullObject().string16(QStringLiteral("")).int32(1);
    writer.string16(action).int32(1).string16(QStringLiteral("content://a/b")).string16(type);
    if (hasIdentifier)
        writer.string16(QStringLiteral(""));
    writer.int32(0x10000000).nullString16().nullString16();
    writer.int32(0).int32(0).int32(0).int32(0).int32(-2).int32(-1);
    writer.string16(type).nullObject().string16(QStringLiteral(""));
    return writer.int32(0).int32(0).int32(0).int32(0);
}

} // namespace

class TestAlienActivityManager : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void callsOnSdk26() { callsOn(26, 7, 68, false); }
    void callsOnSdk27() { callsOn(27, 3, 72, false); }
    void callsOnSdk28() { callsOn(28, 6, 77, false); }
    void callsOnSdk29() { callsOn(29, 7, 68, true); }
    void callsOnSdk30() { callsOn(30, 7, 68, true); }
    void resolvedTypeIsNullWithoutOne();
    void failuresAreNotNoticed();
    void nothingIsSentWithoutALink();
    void connectsAgainAfterALoss();
    void callsLeaveNothingBehind();

private:
    void callsOn(int level, quint32 startCode, quint32 stopCode, bool hasIdentifier)
    {
        QVERIFY(installRuntime(level));
        FakeBinder::registerService(service);
        m_unit->startOutAs(active);
        AlienActivityManager manager;
        const QStringList lines = level < 27 || level > 29 ? texts({unsupported}) : QStringList();
        LogCapture log(LogCapture::Level::Default);

        manager.startActivity(viewIntent());
        QCOMPARE(log.take(), lines);
        QCOMPARE(takeCalls(), QStringList(activityCall(startCode, startBody(hasIdentifier))));

        manager.forceStopPackage(app);
        QCOMPARE(log.take(), lines);
        QCOMPARE(takeCalls(), QStringList(activityCall(stopCode, body().string16(app).int32(0))));
    }
};

void TestAlienActivityManager::resolvedTypeIsNullWithoutOne()
{
    QVERIFY(installRuntime(28));
    FakeBinder::registerService(service);
    m_unit->startOutAs(active);
    AlienActivityManager manager;
    manager.startActivity(AlienIntent(action));

    ParcelWriter expected = body();
    expected.nullObject().string16(QStringLiteral("")).int32(1);
    expected.string16(action).int32(0).nullString16().int32(0).nullString16().nullString16();
    expected.int32(0).int32(0).int32(0).int32(0).int32(-2).int32(-1);
    expected.nullString16().nullObject().string16(QStringLiteral(""));
    expected.int32(0).int32(0).int32(0).int32(0);
    QCOMPARE(takeCalls(), QStringList(activityCall(6, expected)));
}

void TestAlienActivityManager::failuresAreNotNoticed()
{
    QVERIFY(installRuntime(28));
    FakeBinder::registerService(
        service, [](const FakeBinder::Request &) { return Reply::failure(-32); });
    m_unit->startOutAs(active);
    AlienActivityManager manager;
    LogCapture log;
    manager.startActivity(viewIntent());
    manager.forceStopPackage(app);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls().size(), 2);
}

void TestAlienActivityManager::nothingIsSentWithoutALink()
{
    FakeBinder::registerService(service);
    AlienActivityManager manager;
    LogCapture log;
    // Not even a word about the level, which is not known here.
    manager.startActivity(viewIntent());
    manager.forceStopPackage(app);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienActivityManager::connectsAgainAfterALoss()
{
    QVERIFY(installRuntime(29));
    FakeBinder::registerService(service);
    m_unit->startOutAs(active);
    AlienActivityManager manager;
    QSignalSpy spy(&manager, &AlienBinderConnection::connectionChanged);
    FakeBinder::killService(service);
    QTRY_COMPARE(spy.size(), 1);
    FakeBinder::registerService(service);
    QTRY_COMPARE(spy.size(), 2);
    manager.forceStopPackage(app);
    QCOMPARE(takeCalls().size(), 1);
}

void TestAlienActivityManager::callsLeaveNothingBehind()
{
    QVERIFY(installRuntime(29));
    FakeBinder::registerService(service);
    m_unit->startOutAs(active);
    AlienActivityManager manager;
    FakeBinder::clearLedger();
    manager.startActivity(viewIntent());
    manager.forceStopPackage(app);
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request activity", "client_transact_sync_reply activity 7",
            "local_request_unref activity", "remote_reply_unref activity",
            "client_new_request activity", "client_transact_sync_reply activity 68",
            "local_request_unref activity", "remote_reply_unref activity"}));
}

LUM_TEST_MAIN(TestAlienActivityManager)
#include "tst_alienactivitymanager.moc"
