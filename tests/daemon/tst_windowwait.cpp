// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <mutex>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;
using Replies = QVector<FakeBinder::Reply>;
Q_DECLARE_METATYPE(Replies)

namespace {

const QString activity = QStringLiteral("activity");
const QString surfaceFlinger = QStringLiteral("SurfaceFlinger");
const QString launching = QStringLiteral("debug com.tovra.lumd.daemon Launching  \"a\" \"com.a\"");
const QString halfASecond = QStringLiteral("sleep 500");

Reply answer(bool hasWindow)
{
    return Reply::data(ParcelWriter().boolean(hasWindow).bytes());
}

QString notFound(const QString &package)
{
    return QStringLiteral(
        "debug com.tovra.lumd.daemon Window for \"%1\" not yet found. Sleeping 500ms")
        .arg(package);
}

/// The same lines several times.
QStringList times(int count, const QStringList &lines)
{
    QStringList all;
    for (int i = 0; i < count; ++i)
        all += lines;
    return all;
}

/// Answers with these, one call after the other, and with the last of them from then on.
FakeBinder::Handler inTurn(const Replies &replies)
{
    struct State
    {
        std::mutex mutex;
        int next = 0;
    };
    return [replies, state = std::make_shared<State>()](const Request &) {
        const std::lock_guard<std::mutex> lock(state->mutex);
        const Reply reply = replies.at(state->next);
        state->next = qMin(state->next + 1, replies.size() - 1);
        return reply;
    };
}

QVariantList intent(const QString &action, const QString &package = {})
{
    const QString none;
    return {action, none, none, package, none, none, QVariantMap()};
}

QString launch(const QString &action, const QString &package = {})
{
    return errorOf(DaemonFixture::call(QStringLiteral("launchIntent"), intent(action, package)));
}

/// "CODE STRING", the string being what a window is looked for, or an Intent's action.
QString textOf(const Request &request)
{
    ParcelReader reader(request.payload);
    if (request.service == activity) {
        reader.object();
        reader.string16();
        reader.int32();
    }
    return QStringLiteral("%1 %2").arg(request.code).arg(reader.string16());
}

/// The ledger of the wait, without the numbers of handlers.
QStringList ledgerOfTheWait(const QStringList &ledger)
{
    QStringList lines = ledger.filter(
        QRegularExpression(QStringLiteral("SurfaceFlinger|servicemanager_(new|unref)")));
    return lines.replaceInStrings(
        QRegularExpression(QStringLiteral("(_handler SurfaceFlinger) \\d+$")),
        QStringLiteral("\\1"));
}

} // namespace

class TestWindowWait : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void attemptsGoOnUntilThereIsAWindow_data();
    void attemptsGoOnUntilThereIsAWindow();
    void unreachableServiceIsTriedTenTimes_data();
    void unreachableServiceIsTriedTenTimes();
    void refusedIntentIsWaitedForAllTheSame();
    void eachWaitHasAConnectionOfItsOwn();
    void nextIntentAndOtherCallsComeAfterTheWait();
    void waitsLeaveNothingBehind();

private:
    /// Starts the daemon without time in its sleeps, with a runtime that is up.
    bool startTimeless(const FakeBinder::Handler &activityManager = {});
    /// What the daemon did about launching, sleeps and all that went wrong.
    QStringList lines() const;

    std::unique_ptr<AppFixture> m_world;
};

void TestWindowWait::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestWindowWait::cleanup()
{
    m_world->renew();
}

bool TestWindowWait::startTimeless(const FakeBinder::Handler &activityManager)
{
    m_world->android->registerService(activity, activityManager);
    m_world->daemon->setEnvironment(QStringLiteral("LD_PRELOAD"), QStringLiteral(SHORT_WAITS_PATH));
    m_world->daemon->setEnvironment(QStringLiteral("ASAN_OPTIONS"),
        qEnvironmentVariable("ASAN_OPTIONS") + QStringLiteral(":verify_asan_link_order=0"));
    return m_world->start() && m_world->see(QStringLiteral("active"))
        && m_world->waitForLink(activity);
}

QStringList TestWindowWait::lines() const
{
    return m_world->daemon->lines().filter(QRegularExpression(
        QStringLiteral("^(sleep|warning|critical|debug com\\.tovra\\.lumd\\.daemon (?!Launching "
                       "intent))")));
}

void TestWindowWait::attemptsGoOnUntilThereIsAWindow_data()
{
    QTest::addColumn<Replies>("replies");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<QStringList>("words");
    const Reply failure = Reply::failure(-1);
    const Reply empty = Reply::data({});
    const QString missing = notFound(QStringLiteral("com.a"));
    const QString noParcel = QStringLiteral(
        "warning com.tovra.lumd.binder Cannot create output parcel. Returning empty");
    QTest::newRow("at once") << Replies{answer(true), answer(false)} << 1 << QStringList();
    QTest::newRow("later") << Replies{answer(false), answer(false), answer(true)} << 3
                           << QStringList{missing, halfASecond, missing, halfASecond};
    QTest::newRow("reply without data")
        << Replies{empty, answer(true)} << 2 << QStringList{missing, halfASecond};
    QTest::newRow("no reply") << Replies{Reply::none(), answer(true)} << 2
                              << QStringList{noParcel, missing, halfASecond};
    QTest::newRow("failed call") << Replies{failure, answer(true)} << 2 << QStringList{halfASecond};
    QTest::newRow("after nine") << Replies(9, answer(false)) + Replies{answer(true)} << 10
                                << times(9, {missing, halfASecond});
    QTest::newRow("never") << Replies{answer(false)} << 10 << times(10, {missing, halfASecond});
    QTest::newRow("failed calls alone") << Replies{failure} << 10 << times(10, {halfASecond});
}

void TestWindowWait::attemptsGoOnUntilThereIsAWindow()
{
    QFETCH(Replies, replies);
    QFETCH(int, attempts);
    QFETCH(QStringList, words);
    m_world->android->registerService(surfaceFlinger, inTurn(replies));
    QVERIFY(startTimeless());
    QCOMPARE(launch(QStringLiteral("a"), QStringLiteral("com.a")), QString());
    QTRY_COMPARE(lines(), QStringList{launching} + words);
    const auto requests = m_world->requests(surfaceFlinger, hasWindowCode);
    QCOMPARE(requests.size(), attempts);
    for (const Request &request : requests) {
        QCOMPARE(request.interface, QStringLiteral("android.ui.ISurfaceComposer"));
        QCOMPARE(request.flags, 0U);
        QCOMPARE(request.payload,
            ParcelWriter(ParcelWriter::Style::Gbinder).string16(QStringLiteral("com.a")).bytes());
    }
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestWindowWait::unreachableServiceIsTriedTenTimes_data()
{
    QTest::addColumn<bool>("isRegistered");
    QTest::addColumn<QString>("attempt");
    QTest::newRow("not registered")
        << false << QStringLiteral("servicemanager_get_service_sync SurfaceFlinger");
    QTest::newRow("no client") << true << QStringLiteral("client_new SurfaceFlinger failed");
}

void TestWindowWait::unreachableServiceIsTriedTenTimes()
{
    QFETCH(bool, isRegistered);
    QFETCH(QString, attempt);
    if (isRegistered) {
        m_world->android->registerService(surfaceFlinger);
        m_world->android->failClients(surfaceFlinger);
    }
    QVERIFY(startTimeless());
    QCOMPARE(launch(QStringLiteral("a"), QStringLiteral("com.a")), QString());
    QTRY_COMPARE(lines(), QStringList{launching} + times(10, {halfASecond}));
    const QStringList ledger = ledgerOfTheWait(m_world->android->ledger());
    QCOMPARE(ledger.count(attempt), 10);
    QCOMPARE(ledger.filter(QStringLiteral("client_new_request")), QStringList());
    QCOMPARE(m_world->android->leaks().filter(surfaceFlinger), QStringList());
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestWindowWait::refusedIntentIsWaitedForAllTheSame()
{
    m_world->android->registerService(surfaceFlinger, inTurn({answer(false), answer(true)}));
    QVERIFY(startTimeless([](const Request &) { return Reply::failure(-1); }));
    QCOMPARE(launch(QStringLiteral("a"), QStringLiteral("com.a")), QString());
    QTRY_COMPARE(lines(), QStringList({launching, notFound(QStringLiteral("com.a")), halfASecond}));
    QCOMPARE(m_world->requests(activity, startActivityCode).size(), 1);
}

void TestWindowWait::eachWaitHasAConnectionOfItsOwn()
{
    m_world->android->registerService(
        surfaceFlinger, inTurn({answer(false), answer(true), answer(true)}));
    QVERIFY(startTimeless());
    m_world->android->clearLedger();
    const QStringList connects = texts({"servicemanager_new /dev/puddlejumper",
        "servicemanager_get_service_sync SurfaceFlinger", "remote_object_ref SurfaceFlinger",
        "remote_object_add_death_handler SurfaceFlinger", "client_new SurfaceFlinger"});
    const QStringList asks = texts(
        {"client_new_request SurfaceFlinger", "client_transact_sync_reply SurfaceFlinger 103"});
    const QStringList disconnects =
        texts({"client_unref SurfaceFlinger", "remote_object_remove_handler SurfaceFlinger",
            "remote_object_unref SurfaceFlinger", "servicemanager_unref /dev/puddlejumper"});
    const QStringList forgets =
        texts({"local_request_unref SurfaceFlinger", "remote_reply_unref SurfaceFlinger"});

    QCOMPARE(launch(QStringLiteral("a"), QStringLiteral("com.a")), QString());
    QCOMPARE(ledgerOfTheWait(m_world->android->ledger()),
        connects + asks + asks + disconnects + forgets + forgets);
    m_world->android->clearLedger();
    QCOMPARE(launch(QStringLiteral("a"), QStringLiteral("com.a")), QString());
    QCOMPARE(ledgerOfTheWait(m_world->android->ledger()), connects + asks + disconnects + forgets);
    QCOMPARE(m_world->android->leaks().filter(surfaceFlinger), QStringList());
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestWindowWait::nextIntentAndOtherCallsComeAfterTheWait()
{
    // The one wait in real time: the daemon must be caught at it.
    const QString slow = QStringLiteral("com.slow");
    m_world->android->registerService(surfaceFlinger, [slow](const Request &request) {
        return answer(ParcelReader(request.payload).string16() != slow);
    });
    QVERIFY(m_world->start());
    QCOMPARE(launch(QStringLiteral("first"), slow), QString());
    QCOMPARE(launch(QStringLiteral("second")), QString());
    QCOMPARE(launch(QStringLiteral("third"), QStringLiteral("com.fast")), QString());
    QVERIFY(m_world->android->requests().isEmpty());

    m_world->android->registerService(activity);
    m_world->systemd.setUnitState(QStringLiteral("active"), QStringLiteral("test"));
    QVERIFY(m_world->android->waitForRequest(surfaceFlinger, hasWindowCode));
    QCOMPARE(launch(QStringLiteral("meanwhile")), QString());

    m_world->android->settle();
    QStringList calls;
    for (const Request &request : m_world->android->requests())
        calls.append(textOf(request));
    QCOMPARE(calls,
        QStringList{QStringLiteral("3 first")} + times(10, {QStringLiteral("103 com.slow")})
            + texts({"3 second", "3 third", "103 com.fast", "3 meanwhile"}));
}

void TestWindowWait::waitsLeaveNothingBehind()
{
    m_world->android->registerService(
        surfaceFlinger, inTurn({Reply::failure(-1), Reply::none(), Reply::data({}), answer(true)}));
    QVERIFY(startTimeless());
    QCOMPARE(launch(QStringLiteral("a"), QStringLiteral("com.a")), QString());
    QCOMPARE(m_world->requests(surfaceFlinger, hasWindowCode).size(), 4);
    QCOMPARE(m_world->android->leaks().filter(surfaceFlinger), QStringList());
    QCOMPARE(m_world->android->errors(), QStringList());
    // An exit by which the sanitizers' build looks for lost memory.
    m_world->android->quitDaemon();
    QVERIFY(m_world->daemon->waitForExit());
    QCOMPARE(m_world->daemon->exitCode(), 0);
}

LUM_TEST_MAIN(TestWindowWait)
#include "tst_windowwait.moc"
