// SPDX-License-Identifier: BSD-3-Clause
// What the daemon does between an Intent and its window, in real time.
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QElapsedTimer>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;
Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

const QString activity = QStringLiteral("activity");
const QString surfaceFlinger = QStringLiteral("SurfaceFlinger");
const QString slow = QStringLiteral("com.slow");
const QString activityDied =
    QStringLiteral("warning com.tovra.lumd.binder activity died! Trying to reconnect.");
const QString waitEnded =
    QStringLiteral("debug com.tovra.lumd.binder Destroying SurfaceFlinger connection");
constexpr int longestWait = 5000;

Reply answer(bool hasWindow)
{
    return Reply::data(ParcelWriter().boolean(hasWindow).bytes());
}

/// Every package but one has a window.
FakeBinder::Handler windowsOfAllBut(const QString &package, const Reply &reply)
{
    return [package, reply](const Request &request) {
        return ParcelReader(request.payload).string16() == package ? reply : answer(true);
    };
}

QString launch(const QString &action, const QString &package = {})
{
    const QString none;
    return errorOf(DaemonFixture::call(
        QStringLiteral("launchIntent"), {action, none, none, package, none, none, QVariantMap()}));
}

QString actionOf(const Request &request)
{
    ParcelReader reader(request.payload);
    reader.object();
    reader.string16();
    reader.int32();
    return reader.string16();
}

} // namespace

class TestLaunchWait : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void callsAreAnsweredInAWait_data();
    void callsAreAnsweredInAWait();
    void nextIntentStartsWhenTheWaitIsOver_data();
    void nextIntentStartsWhenTheWaitIsOver();
    void intentsStayInOrder();
    void returnOfTheServiceLetsNoIntentOvertake();
    void intentsWaitForAServiceThatWentInAWait();
    void announcementsAreServedInAWait();
    void refusedIntentIsWaitedForAllTheSame();
    void daemonEndsInAWait_data();
    void daemonEndsInAWait();

private:
    /// Starts the daemon on a runtime that is up.
    bool start(const FakeBinder::Handler &windows);
    /// The actions of the Intents that were started so far.
    QStringList started();

    std::unique_ptr<AppFixture> m_world;
};

void TestLaunchWait::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestLaunchWait::cleanup()
{
    m_world->renew();
}

bool TestLaunchWait::start(const FakeBinder::Handler &windows)
{
    m_world->android->registerService(surfaceFlinger, windows);
    m_world->android->registerService(activity);
    m_world->systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("test"));
    return m_world->start() && m_world->waitForLink(activity);
}

QStringList TestLaunchWait::started()
{
    QStringList actions;
    for (const Request &request : m_world->requests(activity, startActivityCode))
        actions.append(actionOf(request));
    return actions;
}

void TestLaunchWait::callsAreAnsweredInAWait_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::newRow("no window") << answer(false);
    QTest::newRow("slow answers") << Reply::after(1000, answer(false));
    QTest::newRow("no answer") << Reply::never();
}

void TestLaunchWait::callsAreAnsweredInAWait()
{
    QFETCH(Reply, reply);
    QVERIFY(start(windowsOfAllBut(slow, reply)));
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 6; ++i)
        QCOMPARE(launch(QString::number(i), slow), QString());
    QCOMPARE(resultOf(DaemonFixture::call(
                 QStringLiteral("getAppStartOnBootup"), {QStringLiteral("com.a")})),
        QStringLiteral("false"));
    // All that was within the first Intent's wait.
    QCOMPARE(started(), QStringList{QStringLiteral("0")});
    QVERIFY2(timer.elapsed() < longestWait, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(m_world->android->errors().isEmpty());
}

void TestLaunchWait::nextIntentStartsWhenTheWaitIsOver_data()
{
    callsAreAnsweredInAWait_data();
}

void TestLaunchWait::nextIntentStartsWhenTheWaitIsOver()
{
    QFETCH(Reply, reply);
    QVERIFY(start(windowsOfAllBut(slow, reply)));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(launch(QStringLiteral("first"), slow), QString());
    QVERIFY(m_world->android->waitForRequest(surfaceFlinger, hasWindowCode));
    QCOMPARE(launch(QStringLiteral("second"), QStringLiteral("com.fast")), QString());
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode, 2));
    // Ten answers of a second each took fifteen.
    const qint64 duration = timer.elapsed();
    QVERIFY2(duration >= longestWait && duration < 2 * longestWait,
        qPrintable(QString::number(duration)));
    QCOMPARE(started(), QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

void TestLaunchWait::intentsStayInOrder()
{
    m_world->android->registerService(surfaceFlinger, windowsOfAllBut(slow, answer(false)));
    QVERIFY(m_world->start());
    QCOMPARE(launch(QStringLiteral("first"), slow), QString());
    QCOMPARE(launch(QStringLiteral("second")), QString());
    QCOMPARE(launch(QStringLiteral("third"), QStringLiteral("com.fast")), QString());
    QVERIFY(m_world->android->requests().isEmpty());

    m_world->android->registerService(activity);
    m_world->systemd.setUnitState(QStringLiteral("active"), QStringLiteral("test"));
    QVERIFY(m_world->android->waitForRequest(surfaceFlinger, hasWindowCode));
    QCOMPARE(launch(QStringLiteral("meanwhile")), QString());
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode, 4));
    QCOMPARE(started(), texts({"first", "second", "third", "meanwhile"}));
    const QStringList asked = names(m_world->requests(surfaceFlinger, hasWindowCode));
    QVERIFY(asked.count(slow) > 1);
    QCOMPARE(asked.last(), QStringLiteral("com.fast"));
    QCOMPARE(m_world->android->requests().last().service, activity);
}

void TestLaunchWait::returnOfTheServiceLetsNoIntentOvertake()
{
    QVERIFY(start(windowsOfAllBut(slow, answer(false))));
    QCOMPARE(launch(QStringLiteral("first"), slow), QString());
    QCOMPARE(launch(QStringLiteral("second"), slow), QString());
    QCOMPARE(launch(QStringLiteral("third")), QString());

    m_world->android->killService(activity);
    QVERIFY(m_world->daemon->waitForLine(activityDied));
    m_world->daemon->clearLines();
    QVERIFY(m_world->bringUp(activity));
    QCOMPARE(started(), texts({"first"}));
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode, 2));
    QCOMPARE(started(), texts({"first", "second"}));
    m_world->android->registerService(surfaceFlinger, windowsOfAllBut({}, {}));
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode, 3));
    QCOMPARE(started(), texts({"first", "second", "third"}));
}

void TestLaunchWait::intentsWaitForAServiceThatWentInAWait()
{
    QVERIFY(start(windowsOfAllBut(slow, answer(false))));
    QCOMPARE(launch(QStringLiteral("first"), slow), QString());
    QCOMPARE(launch(QStringLiteral("second")), QString());
    m_world->android->killService(activity);
    QVERIFY(m_world->daemon->waitForLine(activityDied));
    QVERIFY(m_world->daemon->waitForLine(waitEnded));
    QCOMPARE(launch(QStringLiteral("third")), QString());
    QCOMPARE(started(), texts({"first"}));

    m_world->daemon->clearLines();
    QVERIFY(m_world->bringUp(activity));
    QCOMPARE(started(), texts({"first", "second", "third"}));
    // And nothing has stayed busy.
    QCOMPARE(launch(QStringLiteral("fourth")), QString());
    QCOMPARE(started().last(), QStringLiteral("fourth"));
}

void TestLaunchWait::announcementsAreServedInAWait()
{
    QVERIFY(start(windowsOfAllBut(slow, Reply::never())));
    QVERIFY(m_world->android->waitForPublished(QStringLiteral("alien.launcher")));
    QCOMPARE(launch(QStringLiteral("first"), slow), QString());
    QCOMPARE(launch(QStringLiteral("second")), QString());
    FakeBinder::Call call;
    call.code = launcherAdded;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    call.payload = clockLauncher().payload();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(m_world->android->transact(QStringLiteral("alien.launcher"), call).delivered);
    QVERIFY(QFile::exists(clockLauncher().entryPath()));
    QCOMPARE(started(), texts({"first"}));
    QVERIFY(timer.elapsed() < longestWait);
}

void TestLaunchWait::refusedIntentIsWaitedForAllTheSame()
{
    m_world->android->registerService(surfaceFlinger, windowsOfAllBut({}, {}));
    m_world->android->registerService(activity, [](const Request &) { return Reply::failure(-1); });
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->waitForLink(activity));
    QCOMPARE(launch(QStringLiteral("a"), QStringLiteral("com.a")), QString());
    QCOMPARE(started(), texts({"a"}));
    QCOMPARE(names(m_world->requests(surfaceFlinger, hasWindowCode)),
        QStringList{QStringLiteral("com.a")});
}

void TestLaunchWait::daemonEndsInAWait_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::newRow("in a pause") << answer(false);
    QTest::newRow("with no answer") << Reply::never();
}

void TestLaunchWait::daemonEndsInAWait()
{
    QFETCH(Reply, reply);
    QVERIFY(start(windowsOfAllBut(slow, reply)));
    QCOMPARE(launch(QStringLiteral("a"), slow), QString());
    QVERIFY(m_world->android->waitForRequest(surfaceFlinger, hasWindowCode));
    m_world->android->quitDaemon();
    QVERIFY(m_world->daemon->waitForExit());
    QCOMPARE(m_world->daemon->exitCode(), 0);
    // Also where a call is out, and the process leaves in haste, the daemon is destroyed first.
    const QRegularExpression links(QStringLiteral("Destroying \\w+ connection$"));
    QCOMPARE(m_world->daemon->lines().filter(links),
        QStringList(waitEnded) << texts(
            {"debug com.tovra.lumd.binder Destroying deviceidle connection",
                "debug com.tovra.lumd.binder Destroying alarm connection",
                "debug com.tovra.lumd.binder Destroying storagestats connection",
                "debug com.tovra.lumd.binder Destroying activity connection",
                "debug com.tovra.lumd.binder Destroying package connection"}));
}

LUM_TEST_MAIN(TestLaunchWait)
#include "tst_launchwait.moc"
