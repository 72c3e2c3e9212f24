// SPDX-License-Identifier: BSD-3-Clause
#include "clients/aliendeviceidle.h"

#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

const QString service = QStringLiteral("deviceidle");
const QString active = QStringLiteral("active");
const QString app = QStringLiteral("com.foo");
constexpr bool listed = true;
constexpr bool notListed = false;

constexpr char unsupported[] = "critical com.tovra.lumd.binder Unsupported android SDK version!";
constexpr char checkFailed[] =
    "critical com.tovra.lumd.binder PowerSaveWhitelist check for \"com.foo\" failed";
constexpr char settingFailed[] =
    "critical com.tovra.lumd.binder PowerSaveWhitelist setting for \"com.foo\" failed";

QString idleCall(quint32 code, const QString &packageName)
{
    return callText(
        "deviceidle", "android.os.IDeviceIdleController", code, body().string16(packageName));
}

} // namespace

class TestAlienDeviceIdle : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void settingHasACodeForEachDirection();
    void failedSettingIsLogged_data();
    void failedSettingIsLogged();
    void resultIsExactlyOne_data();
    void resultIsExactlyOne();
    void checkOnSdk26SaysSoAndUsesTheCodeOf29() { checkLevel(26, 16, texts({unsupported})); }
    void checkOnSdk27HasItsCode() { checkLevel(27, 13, {}); }
    void checkOnSdk28HasItsCode() { checkLevel(28, 16, {}); }
    void checkOnSdk29HasItsCode() { checkLevel(29, 16, {}); }
    void checkOnSdk30SaysSoAndUsesTheCodeOf29() { checkLevel(30, 16, texts({unsupported})); }
    void nothingIsSentWhileTheRuntimeIsDown();
    void nothingIsSentWithoutTheService();
    void callsWithinFiveSecondsShareALink();

private:
    void checkLevel(int level, quint32 code, const QStringList &lines)
    {
        QVERIFY(installRuntime(level));
        answerWith(service, Reply::data(ParcelWriter().int32(0).int32(1).bytes()));
        AlienDeviceIdle idle;
        LogCapture log(LogCapture::Level::Default);
        QCOMPARE(idle.isWhitelisted(app), true);
        QCOMPARE(log.lines(), lines);
        QCOMPARE(takeCalls(), QStringList(idleCall(code, app)));
    }
};

void TestAlienDeviceIdle::settingHasACodeForEachDirection()
{
    // No word about the level: these two codes do not move.
    QVERIFY(installRuntime(30));
    answerWith(service, Reply::data(ParcelWriter().int32(-1).bytes()));
    AlienDeviceIdle idle;
    LogCapture log(LogCapture::Level::Default);
    idle.setWhitelisted(app, true);
    idle.setWhitelisted(app, false);
    idle.setWhitelisted(QStringLiteral(""), false);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls(),
        QStringList({idleCall(1, app), idleCall(2, app), idleCall(2, QStringLiteral(""))}));
}

void TestAlienDeviceIdle::failedSettingIsLogged_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("failed") << Reply::failure(-32) << texts({settingFailed});
    QTest::newRow("refused by the service") << Reply::failure(7) << texts({settingFailed});
    QTest::newRow("not answered") << Reply::none() << QStringList();
    // An exception of Android's is not looked for.
    QTest::newRow("exception") << Reply::data(ParcelWriter().int32(-1).bytes()) << QStringList();
}

void TestAlienDeviceIdle::failedSettingIsLogged()
{
    QFETCH(Reply, reply);
    QFETCH(QStringList, lines);
    answerWith(service, reply);
    AlienDeviceIdle idle;
    LogCapture log(LogCapture::Level::Default);
    idle.setWhitelisted(app, true);
    QCOMPARE(log.lines(), lines);
}

void TestAlienDeviceIdle::resultIsExactlyOne_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("lines");

    const auto answer = [](const char *name, const ParcelWriter &bytes, bool result,
                            const QStringList &lines) {
        QTest::newRow(name) << Reply::data(bytes.bytes()) << result << lines;
    };
    const QStringList silence;
    const QStringList failure = texts({checkFailed});
    answer("1", ParcelWriter().int32(0).int32(1), listed, silence);
    answer("0", ParcelWriter().int32(0).int32(0), notListed, silence);
    answer("2", ParcelWriter().int32(0).int32(2), notListed, silence);
    answer("-1", ParcelWriter().int32(0).int32(-1), notListed, silence);
    answer("no result", ParcelWriter().int32(0), notListed, silence);
    answer("empty", ParcelWriter(), notListed, silence);
    answer("two bytes", ParcelWriter().raw(QByteArray(2, '\1')), notListed, silence);
    answer("exception", ParcelWriter().int32(-1), notListed, failure);
    answer("exception and its text",
        ParcelWriter().int32(-5).string16(QStringLiteral("IllegalState")), notListed, failure);
    answer("exception and yet a result", ParcelWriter().int32(-1).int32(1), listed, failure);
    QTest::newRow("failed") << Reply::failure(-32) << notListed << failure;
    QTest::newRow("failed and yet a result")
        << Reply::failureWith(-5, ParcelWriter().int32(0).int32(1).bytes()) << notListed << failure;
    QTest::newRow("not answered") << Reply::none() << notListed << silence;
}

void TestAlienDeviceIdle::resultIsExactlyOne()
{
    QFETCH(Reply, reply);
    QFETCH(bool, result);
    QFETCH(QStringList, lines);
    QVERIFY(installRuntime(28));
    answerWith(service, reply);
    AlienDeviceIdle idle;
    LogCapture log(LogCapture::Level::Default);
    QCOMPARE(idle.isWhitelisted(app), result);
    QCOMPARE(log.lines(), lines);
}

void TestAlienDeviceIdle::nothingIsSentWhileTheRuntimeIsDown()
{
    FakeBinder::registerService(service);
    AlienDeviceIdle idle;
    LogCapture log;
    idle.setWhitelisted(app, true);
    QCOMPARE(idle.isWhitelisted(app), false);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienDeviceIdle::nothingIsSentWithoutTheService()
{
    m_unit->startOutAs(active);
    AlienDeviceIdle idle;
    LogCapture log(LogCapture::Level::Default);
    idle.setWhitelisted(app, true);
    QCOMPARE(idle.isWhitelisted(app), false);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienDeviceIdle::callsWithinFiveSecondsShareALink()
{
    QVERIFY(installRuntime(28));
    answerWith(service, Reply::data(ParcelWriter().int32(0).int32(1).bytes()));
    AlienDeviceIdle idle;
    QSignalSpy spy(&idle, &AlienBinderConnection::connectionChanged);
    QElapsedTimer sinceConnect;
    FakeBinder::clearLedger();

    sinceConnect.start();
    idle.setWhitelisted(app, true);
    QCOMPARE(idle.isWhitelisted(app), true);
    QCOMPARE(FakeBinder::ledger().count(QStringLiteral("client_new deviceidle")), 1);
    QCOMPARE(spy.size(), 1);

    // The link goes by itself.
    QTRY_COMPARE_WITH_TIMEOUT(spy.size(), 2, 30000);
    QVERIFY(sinceConnect.elapsed() >= 4750); // a coarse timer may be 5 % early
    QCOMPARE(spy.last().first().toBool(), false);
    QCOMPARE(idle.isWhitelisted(app), true);
    QCOMPARE(FakeBinder::ledger().count(QStringLiteral("client_new deviceidle")), 2);
}

LUM_TEST_MAIN(TestAlienDeviceIdle)
#include "tst_aliendeviceidle.moc"
