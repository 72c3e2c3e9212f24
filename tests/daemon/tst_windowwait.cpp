// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/windowwait.h"
#include "runtime/servicecontroller.h"
#include "tests/binder/runtimetest.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/leapingclock.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QElapsedTimer>
#include <QSignalSpy>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;
using Replies = QVector<FakeBinder::Reply>;
Q_DECLARE_METATYPE(Replies)
Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

const QString surfaceFlinger = QStringLiteral("SurfaceFlinger");
const QString package = QStringLiteral("com.a");
const QString notFound = QStringLiteral(
    "debug com.tovra.lumd.daemon Window for \"com.a\" not yet found. Sleeping 500ms");
constexpr quint32 hasWindowCode = 103;
constexpr int longestWait = 5000;

Reply answer(bool hasWindow)
{
    return Reply::data(ParcelWriter().boolean(hasWindow).bytes());
}

/// Answers with these, one call after the other, and with the last of them from then on.
FakeBinder::Handler inTurn(const Replies &replies)
{
    return [replies, next = std::make_shared<int>(0)](const Request &) {
        const Reply reply = replies.at(*next);
        *next = qMin(*next + 1, replies.size() - 1);
        return reply;
    };
}

/// The same line several times.
QStringList times(int count, const QString &line)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines += line;
    return lines;
}

/// The milliseconds that a wait takes; -1 when it does not end.
int measure(WindowWait &wait, const QString &name = package)
{
    QElapsedTimer timer;
    QSignalSpy finished(&wait, &WindowWait::finished);
    timer.start();
    wait.start(name);
    if (!finished.isEmpty() || !finished.wait(60000) || finished.size() != 1)
        return -1;
    return int(timer.elapsed());
}

QStringList questions()
{
    QStringList packages;
    for (const Request &request : FakeBinder::requests())
        packages.append(ParcelReader(request.payload).string16());
    return packages;
}

void turnFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

class TestWindowWait : public RuntimeTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void attemptsGoOnUntilThereIsAWindow_data();
    void attemptsGoOnUntilThereIsAWindow();
    void unreachableServiceIsTriedTenTimes_data();
    void unreachableServiceIsTriedTenTimes();
    void callThatCannotBeMadeIsTriedTenTimes();
    void eachWaitHasAConnectionOfItsOwn();
    void lateAnswerIsNotTakenForThatOfTheNextWait();
    void serviceThatOwesFourAnswersIsNotAsked();
    void linkThatGoesCountsAsANo_data();
    void linkThatGoesCountsAsANo();
    void linkIsNotTimedOutWithinAWait();
    void destructionEndsAWait_data();
    void destructionEndsAWait();

private:
    std::optional<LeapingClock> m_clock;
};

void TestWindowWait::init()
{
    m_unit->startOutAs(QStringLiteral("active"));
    // Before the time stands still, since systemd is asked here.
    ServiceController::instance();
    m_clock.emplace();
    FakeBinder::clearRequests();
    FakeBinder::clearLedger();
}

void TestWindowWait::attemptsGoOnUntilThereIsAWindow_data()
{
    QTest::addColumn<Replies>("replies");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("duration");
    const Reply yes = answer(true);
    const Reply no = answer(false);
    const Reply failure = Reply::failure(-1);
    const QString noParcel = QStringLiteral(
        "warning com.tovra.lumd.binder Cannot create output parcel. Returning empty");
    QTest::newRow("at once") << Replies{yes, no} << 1 << QStringList() << 0;
    QTest::newRow("later") << Replies{no, no, yes} << 3 << times(2, notFound) << 1000;
    QTest::newRow("reply without data")
        << Replies{Reply::data({}), yes} << 2 << QStringList{notFound} << 500;
    QTest::newRow("no reply") << Replies{Reply::none(), yes} << 2 << QStringList{noParcel, notFound}
                              << 500;
    QTest::newRow("failed call") << Replies{failure, yes} << 2 << QStringList() << 500;
    QTest::newRow("after nine") << Replies(9, no) + Replies{yes} << 10 << times(9, notFound)
                                << 4500;
    QTest::newRow("never") << Replies{no} << 10 << times(10, notFound) << longestWait;
    QTest::newRow("failed calls alone") << Replies{failure} << 10 << QStringList() << longestWait;
    QTest::newRow("after a second")
        << Replies{Reply::after(1000, yes)} << 1 << QStringList() << 1000;
    QTest::newRow("never, a second for each no")
        << Replies{Reply::after(1000, no)} << 4 << times(3, notFound) << longestWait;
    QTest::newRow("never, and a pause at the end")
        << Replies{Reply::after(800, no)} << 4 << times(4, notFound) << longestWait;
    QTest::newRow("yes, but too late")
        << Replies{Reply::after(5001, yes)} << 1 << QStringList() << longestWait;
    QTest::newRow("no answer") << Replies{Reply::never()} << 1 << QStringList() << longestWait;
    QTest::newRow("no answer to the second question")
        << Replies{no, Reply::never()} << 2 << QStringList{notFound} << longestWait;
}

void TestWindowWait::attemptsGoOnUntilThereIsAWindow()
{
    QFETCH(Replies, replies);
    QFETCH(int, attempts);
    QFETCH(QStringList, words);
    QFETCH(int, duration);
    FakeBinder::registerService(surfaceFlinger, inTurn(replies));
    WindowWait wait;
    LogCapture log;
    QCOMPARE(measure(wait), duration);
    QCOMPARE(log.lines().filter(QRegularExpression(
                 QStringLiteral("^(warning|critical|debug com\\.tovra\\.lumd\\.daemon)"))),
        words);
    const QVector<Request> requests = FakeBinder::requests();
    QCOMPARE(requests.size(), attempts);
    for (const Request &request : requests) {
        QCOMPARE(request.code, hasWindowCode);
        QCOMPARE(request.interface, QStringLiteral("android.ui.ISurfaceComposer"));
        QCOMPARE(request.flags, 0U);
        QCOMPARE(
            request.payload, ParcelWriter(ParcelWriter::Style::Gbinder).string16(package).bytes());
    }
    // Nothing of the wait goes on after its end, and what was left unanswered ends with this.
    FakeBinder::killService(surfaceFlinger);
    log.clear();
    turnFor(20000);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(FakeBinder::requests().size(), attempts);
    QVERIFY(!wait.hasUnansweredCall());
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
        FakeBinder::registerService(surfaceFlinger);
        FakeBinder::failClients(surfaceFlinger);
    }
    WindowWait wait;
    QCOMPARE(measure(wait), longestWait);
    QCOMPARE(FakeBinder::ledger().count(attempt), 10);
    QCOMPARE(FakeBinder::ledger().filter(QStringLiteral("client_new_request")), QStringList());
}

void TestWindowWait::callThatCannotBeMadeIsTriedTenTimes()
{
    const QString noRequest =
        QStringLiteral("warning com.tovra.lumd.binder Cannot create input parcel. Returning empty");
    FakeBinder::registerService(surfaceFlinger);
    FakeBinder::failRequests();
    WindowWait wait;
    const LogCapture log;
    QCOMPARE(measure(wait), longestWait);
    QCOMPARE(
        FakeBinder::ledger().count(QStringLiteral("client_new_request SurfaceFlinger failed")), 10);
    QCOMPARE(log.lines().filter(QStringLiteral("warning ")), times(10, noRequest));
    QVERIFY(!wait.hasUnansweredCall());
}

void TestWindowWait::eachWaitHasAConnectionOfItsOwn()
{
    FakeBinder::registerService(surfaceFlinger, inTurn({answer(false), answer(true)}));
    const auto connects = [](int handler) {
        return texts({"servicemanager_new /dev/puddlejumper",
                   "servicemanager_get_service_sync SurfaceFlinger",
                   "remote_object_ref SurfaceFlinger"})
            + QStringList{
                QStringLiteral("remote_object_add_death_handler SurfaceFlinger %1").arg(handler),
                QStringLiteral("client_new SurfaceFlinger")};
    };
    const QStringList asks = texts({"client_new_request SurfaceFlinger",
        "client_ref SurfaceFlinger", "client_transact SurfaceFlinger 103",
        "client_unref SurfaceFlinger", "remote_reply_ref SurfaceFlinger"});
    const auto disconnects = [](int handler) {
        return QStringList{QStringLiteral("client_unref SurfaceFlinger"),
            QStringLiteral("remote_object_remove_handler SurfaceFlinger %1").arg(handler),
            QStringLiteral("remote_object_unref SurfaceFlinger"),
            QStringLiteral("servicemanager_unref /dev/puddlejumper")};
    };
    const QStringList forgets =
        texts({"local_request_unref SurfaceFlinger", "remote_reply_unref SurfaceFlinger"});

    WindowWait wait;
    QCOMPARE(measure(wait), 500);
    QCOMPARE(FakeBinder::ledger(), connects(1) + asks + asks + disconnects(1) + forgets + forgets);
    FakeBinder::clearLedger();
    QCOMPARE(measure(wait), 0);
    QCOMPARE(FakeBinder::ledger(), connects(2) + asks + disconnects(2) + forgets);
}

void TestWindowWait::lateAnswerIsNotTakenForThatOfTheNextWait()
{
    FakeBinder::registerService(
        surfaceFlinger, inTurn({Reply::after(6000, answer(true)), answer(false)}));
    WindowWait wait;
    QCOMPARE(measure(wait), longestWait);
    QVERIFY(wait.hasUnansweredCall());
    QCOMPARE(measure(wait, QStringLiteral("com.b")), longestWait);
    QVERIFY(!wait.hasUnansweredCall());
    QCOMPARE(questions(), times(1, package) + times(10, QStringLiteral("com.b")));
}

void TestWindowWait::serviceThatOwesFourAnswersIsNotAsked()
{
    FakeBinder::registerService(surfaceFlinger, inTurn({Reply::never()}));
    WindowWait wait;
    QStringList names;
    for (int i = 0; i < 6; ++i) {
        names.append(QStringLiteral("com.%1").arg(i));
        QCOMPARE(measure(wait, names.last()), longestWait);
    }
    QCOMPARE(questions(), names.mid(0, 4));
    // Its successor is.
    FakeBinder::killService(surfaceFlinger);
    FakeBinder::registerService(surfaceFlinger, inTurn({answer(true)}));
    turnFor(0);
    QCOMPARE(measure(wait), 0);
    QCOMPARE(questions().size(), 5);
}

void TestWindowWait::linkThatGoesCountsAsANo_data()
{
    QTest::addColumn<bool>("isDeath");
    QTest::newRow("death of the service") << true;
    QTest::newRow("end of the runtime") << false;
}

void TestWindowWait::linkThatGoesCountsAsANo()
{
    QFETCH(bool, isDeath);
    FakeBinder::registerService(surfaceFlinger, inTurn({Reply::never(), answer(true)}));
    WindowWait wait;
    QSignalSpy finished(&wait, &WindowWait::finished);
    wait.start(package);
    turnFor(100);
    if (isDeath) {
        FakeBinder::killService(surfaceFlinger);
        FakeBinder::registerService(surfaceFlinger, inTurn({answer(true)}));
    } else {
        QVERIFY(m_unit->become(QStringLiteral("deactivating")));
        QVERIFY(m_unit->become(QStringLiteral("active")));
    }
    QElapsedTimer timer;
    timer.start();
    QVERIFY(finished.wait(60000));
    QCOMPARE(timer.elapsed(), 500);
    QCOMPARE(questions(), times(2, package));
    FakeBinder::killService(surfaceFlinger);
    turnFor(0);
}

void TestWindowWait::linkIsNotTimedOutWithinAWait()
{
    FakeBinder::registerService(surfaceFlinger, inTurn({answer(false)}));
    WindowWait wait;
    LogCapture log;
    // Where a timer that may be late or early comes out depends on the time of its start.
    constexpr int waits = 20;
    for (int i = 0; i < waits; ++i) {
        QCOMPARE(measure(wait), longestWait);
        turnFor(53);
    }
    QCOMPARE(log.lines().filter(QStringLiteral("Timing out")), QStringList());
    QCOMPARE(log.lines().filter(QStringLiteral("Connected to")).size(), waits);
}

void TestWindowWait::destructionEndsAWait_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::newRow("before the answer is taken") << answer(true);
    QTest::newRow("in a pause") << answer(false);
    QTest::newRow("with no answer") << Reply::never();
}

void TestWindowWait::destructionEndsAWait()
{
    QFETCH(Reply, reply);
    FakeBinder::registerService(surfaceFlinger, inTurn({reply}));
    int ends = 0;
    {
        WindowWait wait;
        connect(&wait, &WindowWait::finished, this, [&ends] { ++ends; });
        wait.start(package);
        if (!reply.bytes.isEmpty() && reply.bytes.at(0) == 0)
            turnFor(100);
    }
    FakeBinder::killService(surfaceFlinger);
    turnFor(20000);
    QCOMPARE(ends, 0);
    QCOMPARE(questions(), times(1, package));
}

LUM_TEST_MAIN(TestWindowWait)
#include "tst_windowwait.moc"
