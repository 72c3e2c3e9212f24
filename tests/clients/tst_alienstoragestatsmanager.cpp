// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienstoragestatsmanager.h"

#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

const QString service = QStringLiteral("storagestats");
const QString active = QStringLiteral("active");
const QString app = QStringLiteral("com.foo");
constexpr char unsupported[] = "critical com.tovra.lumd.binder Unsupported android SDK version!";

using Sizes = QVector<qint64>;

Sizes sizes(const AppSizeInfo &info)
{
    return {info.codeBytes, info.dataBytes, info.cacheBytes};
}

ParcelWriter question(const QString &packageName)
{
    return body().nullString16().string16(packageName).int32(0).nullString16();
}

QString statsCall(quint32 code, const ParcelWriter &body)
{
    return callText("storagestats", "android.app.usage.IStorageStatsManager", code, body);
}

ParcelWriter answerOf(qint64 code, qint64 data, qint64 cache)
{
    return ParcelWriter().int32(0).int32(1).int64(code).int64(data).int64(cache);
}

/// What the client says of an answer of so many bytes.
QStringList readLines(int bytes, qlonglong status, const Sizes &sizes)
{
    const QString prefix = QStringLiteral("debug com.tovra.lumd.binder ");
    return {prefix + QStringLiteral("Got package stats %1 bytes").arg(bytes),
        prefix + QStringLiteral("Status: %1").arg(status),
        prefix + QStringLiteral("Code:  %1").arg(sizes[0]),
        prefix + QStringLiteral("Data:  %1").arg(sizes[1]),
        prefix + QStringLiteral("Cache:  %1").arg(sizes[2])};
}

} // namespace

class TestAlienStorageStatsManager : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void queryOnSdk26SaysSoAndUsesTheCodeOf29() { queryOn(26, 7, texts({unsupported})); }
    void queryOnSdk27HasItsCode() { queryOn(27, 6, {}); }
    void queryOnSdk28HasItsCode() { queryOn(28, 7, {}); }
    void queryOnSdk29HasItsCode() { queryOn(29, 7, {}); }
    void queryOnSdk30SaysSoAndUsesTheCodeOf29() { queryOn(30, 7, texts({unsupported})); }
    void argumentsGoOutInTheirOrder();
    void answerIsReadAsItComes_data();
    void answerIsReadAsItComes();
    void withoutALinkAllIsZero();
    void withoutTheServiceAllIsZero();
    void queriesWithinFiveSecondsShareALink();

private:
    void queryOn(int level, quint32 code, const QStringList &lines)
    {
        QVERIFY(installRuntime(level));
        answerWith(service, Reply::data(answerOf(1, 2, 3).bytes()));
        AlienStorageStatsManager manager;
        LogCapture log(LogCapture::Level::Default);
        QCOMPARE(sizes(manager.queryStatsForPackage(app, QString(), 0)), Sizes({1, 2, 3}));
        QCOMPARE(log.lines(), lines);
        QCOMPARE(takeCalls(), QStringList(statsCall(code, question(app))));
    }
};

void TestAlienStorageStatsManager::argumentsGoOutInTheirOrder()
{
    QVERIFY(installRuntime(28));
    answerWith(service, Reply::data(answerOf(1, 2, 3).bytes()));
    AlienStorageStatsManager manager;
    manager.queryStatsForPackage(app, QStringLiteral("8ff8"), 10);
    // The service alone says what it makes of a name.
    QCOMPARE(
        sizes(manager.queryStatsForPackage(QStringLiteral(""), QString(), -1)), Sizes({1, 2, 3}));
    QCOMPARE(takeCalls(),
        QStringList(
            {statsCall(
                 7, body().string16(QStringLiteral("8ff8")).string16(app).int32(10).nullString16()),
                statsCall(7,
                    body().nullString16().string16(QStringLiteral("")).int32(-1).nullString16())}));
}

void TestAlienStorageStatsManager::answerIsReadAsItComes_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QVector<qint64>>("result");
    QTest::addColumn<QStringList>("lines");

    const auto answer = [](const char *name, const ParcelWriter &bytes, qlonglong status,
                            const Sizes &result) {
        QTest::newRow(name) << Reply::data(bytes.bytes()) << result
                            << readLines(bytes.bytes().size(), status, result);
    };
    constexpr qlonglong follows = 0x100000000; // no exception, and an object follows
    const Sizes unknown{-1, -1, -1};
    answer("three sizes", answerOf(11, 22, 33), follows, {11, 22, 33});
    answer("beyond 32 bits", answerOf(0x1234567890, 0, -2), follows, {0x1234567890, 0, -2});
    answer("more than is read", answerOf(1, 2, 3).int32(7), follows, {1, 2, 3});
    answer("cut behind the second size", ParcelWriter().int32(0).int32(1).int64(5).int64(6),
        follows, {5, 6, -1});
    answer("empty", ParcelWriter(), -1, unknown);
    // Read on as if it were a result.
    answer("exception", ParcelWriter().int32(-1).int32(0).int64(1).int64(2).int64(3), 0xffffffff,
        {1, 2, 3});
    QTest::newRow("failed") << Reply::failure(-32) << unknown
                            << texts({"critical com.tovra.lumd.binder Error requesting package "
                                      "stats: -32"})
            + readLines(0, -1, unknown);
    const QByteArray threeSizes = answerOf(11, 22, 33).bytes();
    QTest::newRow("failed and yet three sizes")
        << Reply::failureWith(-5, threeSizes) << Sizes{11, 22, 33}
        << texts({"critical com.tovra.lumd.binder Error requesting package stats: -5"})
            + readLines(threeSizes.size(), follows, {11, 22, 33});
    QTest::newRow("not answered") << Reply::none() << unknown << readLines(0, -1, unknown);
}

void TestAlienStorageStatsManager::answerIsReadAsItComes()
{
    QFETCH(Reply, reply);
    QFETCH(QVector<qint64>, result);
    QFETCH(QStringList, lines);
    QVERIFY(installRuntime(27));
    answerWith(service, reply);
    AlienStorageStatsManager manager;
    LogCapture log;
    QCOMPARE(sizes(manager.queryStatsForPackage(app, QString(), 0)), result);
    const QStringList before = texts({"debug com.tovra.lumd.binder Requesting package stats",
        "debug com.tovra.lumd.binder Connected to Alien Service storagestats"});
    QCOMPARE(log.lines(), before + lines);
}

void TestAlienStorageStatsManager::withoutALinkAllIsZero()
{
    FakeBinder::registerService(service);
    AlienStorageStatsManager manager;
    LogCapture log;
    QCOMPARE(sizes(manager.queryStatsForPackage(app, QString(), 0)), Sizes({0, 0, 0}));
    QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.binder Requesting package stats"}));
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienStorageStatsManager::withoutTheServiceAllIsZero()
{
    m_unit->startOutAs(active);
    AlienStorageStatsManager manager;
    LogCapture log;
    QCOMPARE(sizes(manager.queryStatsForPackage(app, QString(), 0)), Sizes({0, 0, 0}));
    QCOMPARE(log.lines(),
        texts({"debug com.tovra.lumd.binder Requesting package stats",
            "debug com.tovra.lumd.binder Could not find remote object for storagestats"}));
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienStorageStatsManager::queriesWithinFiveSecondsShareALink()
{
    QVERIFY(installRuntime(28));
    answerWith(service, Reply::data(answerOf(1, 2, 3).bytes()));
    AlienStorageStatsManager manager;
    QSignalSpy spy(&manager, &AlienBinderConnection::connectionChanged);
    QElapsedTimer sinceConnect;
    FakeBinder::clearLedger();

    sinceConnect.start();
    manager.queryStatsForPackage(app, QString(), 0);
    manager.queryStatsForPackage(app, QString(), 0);
    QCOMPARE(FakeBinder::ledger().count(QStringLiteral("client_new storagestats")), 1);
    QCOMPARE(spy.size(), 1);

    // The link goes by itself.
    QTRY_COMPARE_WITH_TIMEOUT(spy.size(), 2, 30000);
    QVERIFY(sinceConnect.elapsed() >= 4750); // a coarse timer may be 5 % early
    QCOMPARE(spy.last().first().toBool(), false);
    QCOMPARE(sizes(manager.queryStatsForPackage(app, QString(), 0)), Sizes({1, 2, 3}));
    QCOMPARE(FakeBinder::ledger().count(QStringLiteral("client_new storagestats")), 2);
}

LUM_TEST_MAIN(TestAlienStorageStatsManager)
#include "tst_alienstoragestatsmanager.moc"
