// SPDX-License-Identifier: BSD-3-Clause
#include "tests/binder/connection.h"
#include "tests/binder/connectiontest.h"
#include "tests/binder/linkstory.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <glib.h>

#include <array>
#include <memory>

using namespace std::chrono_literals;
using FakeBinder::Notice;

namespace {

const QString alien = QStringLiteral("alien");
const QString active = QStringLiteral("active");
const QString reloading = QStringLiteral("reloading");
const char notFound[] = "debug com.tovra.lumd.binder Could not find remote object for alien";

// Qt may move a timer by a twentieth of its interval.
constexpr auto shortOfOneSecond = 940ms;
constexpr auto shortOfTwoSeconds = 1890ms;
constexpr auto toleranceOfBoth = 220ms;

const QStringList oneTry = texts({"servicemanager_get_service_sync alien"});

/// Whether the event loop, once it has dealt with all that is pending, would wake up by itself.
bool hasTimer()
{
    if (!settle())
        qFatal("the event loop finds no end");
    GMainContext *const context = g_main_context_default();
    if (!g_main_context_acquire(context))
        qFatal("the main context is somebody else's");
    gint priority = 0;
    g_main_context_prepare(context, &priority);
    std::array<GPollFD, 32> descriptors{};
    gint timeout = 0;
    const gint count = g_main_context_query(
        context, G_PRIORITY_LOW, &timeout, descriptors.data(), gint(descriptors.size()));
    // What was prepared must be checked.
    g_main_context_check(
        context, priority, descriptors.data(), std::min(count, gint(descriptors.size())));
    g_main_context_release(context);
    return timeout >= 0;
}

} // namespace

class TestAlienBinderConnectionRetry : public ConnectionTest
{
    Q_OBJECT

private Q_SLOTS:
    void missingServiceIsTriedAfterOneSecondAndThenEveryTwo();
    void serviceThatComesBackUnannouncedIsFound();
    void clientThatCouldNotBeMadeIsTriedAgain();
    void clientLostToANoticeIsTriedAgain();
    void noTimerRunsWhileConnected_data();
    void noTimerRunsWhileConnected();
    void noTimerRunsWithoutAPersistentLinkToLookFor_data();
    void noTimerRunsWithoutAPersistentLinkToLookFor();
    void waitingStopsAndBeginsAnewWithTheRuntime_data();
    void waitingStopsAndBeginsAnewWithTheRuntime();
    void deathWhileTheRuntimeIsNotActiveStartsNoTimer();
    void eachLossBeginsWithOneSecond();
    void destroyedConnectionTriesNoMore();

private:
    void pass(std::chrono::milliseconds time);
};

void TestAlienBinderConnectionRetry::pass(std::chrono::milliseconds time)
{
    shiftClock(time);
    QVERIFY(settle());
}

void TestAlienBinderConnectionRetry::missingServiceIsTriedAfterOneSecondAndThenEveryTwo()
{
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    pass(shortOfOneSecond);
    QCOMPARE(story.take(), QStringList());
    pass(toleranceOfBoth);
    QCOMPARE(story.take(), oneTry);
    QCOMPARE(log.take(), texts({notFound}));

    for (int i = 0; i < 3; ++i) {
        pass(shortOfTwoSeconds);
        QCOMPARE(story.take(), QStringList());
        pass(toleranceOfBoth);
        QCOMPARE(story.take(), oneTry);
        QCOMPARE(log.take(), texts({notFound}));
    }
    // What waits for the service to register stays in place.
    QCOMPARE(FakeBinder::leaks(),
        texts({"servicemanager /dev/puddlejumper", "registration_handler alien 1"}));
}

void TestAlienBinderConnectionRetry::serviceThatComesBackUnannouncedIsFound()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    FakeBinder::killService(alien);
    QVERIFY(settle());
    LinkStory story(connection);
    LogCapture log;

    pass(shortOfOneSecond + toleranceOfBoth);
    QCOMPARE(story.take(), oneTry);
    FakeBinder::registerService(alien, {}, Notice::None);
    pass(shortOfTwoSeconds + toleranceOfBoth);

    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 4", "client_new alien",
            "servicemanager_remove_handler 3", "connectionChanged true"}));
    QCOMPARE(log.lines(),
        texts({notFound, "debug com.tovra.lumd.binder Connected to Alien Service alien"}));
    QVERIFY(!hasTimer());
}

void TestAlienBinderConnectionRetry::clientThatCouldNotBeMadeIsTriedAgain()
{
    FakeBinder::registerService(alien);
    FakeBinder::failClients(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    pass(shortOfOneSecond + toleranceOfBoth);
    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 3", "client_new alien failed",
            "connectionChanged false", "remote_object_remove_handler alien 3",
            "remote_object_unref alien"}));
    QCOMPARE(log.take(),
        texts({"debug com.tovra.lumd.binder Connected to Alien Service alien",
            "debug com.tovra.lumd.binder Could not create client for alien"}));

    FakeBinder::failClients(alien, false);
    pass(shortOfTwoSeconds + toleranceOfBoth);
    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 4", "client_new alien",
            "connectionChanged true"}));
    QVERIFY(!hasTimer());
}

void TestAlienBinderConnectionRetry::clientLostToANoticeIsTriedAgain()
{
    // Connected, and yet waiting: the second "active" did not find the service.
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    FakeBinder::unregisterService(alien);
    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));
    QVERIFY(!hasTimer());
    FakeBinder::failClients(alien);
    FakeBinder::registerService(alien, {}, Notice::Synchronous);
    FakeBinder::failClients(alien, false);
    LinkStory story(connection);

    pass(shortOfOneSecond + toleranceOfBoth);

    QCOMPARE(story.take().last(), QStringLiteral("connectionChanged true"));
}

void TestAlienBinderConnectionRetry::noTimerRunsWhileConnected_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"at once", "by a notice", "by a client", "by a retry"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void TestAlienBinderConnectionRetry::noTimerRunsWhileConnected()
{
    QFETCH(QString, way);
    FakeBinder::unregisterService(alien);
    if (way == QLatin1String("at once"))
        FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(active));
    Connection connection(persistent);
    if (way == QLatin1String("by a notice"))
        FakeBinder::registerService(alien);
    else
        FakeBinder::registerService(alien, {}, Notice::None);
    QVERIFY(settle());
    if (way == QLatin1String("by a client"))
        QVERIFY(connection.client());
    if (way == QLatin1String("by a retry"))
        pass(shortOfOneSecond + toleranceOfBoth);
    QVERIFY(FakeBinder::leaks().contains(QStringLiteral("client alien")));
    LinkStory story(connection);

    QVERIFY(!hasTimer());
    pass(5s);
    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnectionRetry::noTimerRunsWithoutAPersistentLinkToLookFor_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("mode");
    QTest::addColumn<bool>("hasDevice");
    QTest::newRow("on demand") << active << onDemand << true;
    QTest::newRow("no device") << active << persistent << false;
    for (const char *state : {"inactive", "activating", "deactivating", "failed", "reloading"})
        QTest::newRow(state) << QString::fromLatin1(state) << persistent << true;
}

void TestAlienBinderConnectionRetry::noTimerRunsWithoutAPersistentLinkToLookFor()
{
    QFETCH(QString, state);
    QFETCH(bool, mode);
    QFETCH(bool, hasDevice);
    FakeBinder::setPresent(hasDevice);
    QVERIFY(m_unit->become(state));
    Connection connection(mode);
    LinkStory story(connection);

    QVERIFY(!hasTimer());
    pass(5s);
    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnectionRetry::waitingStopsAndBeginsAnewWithTheRuntime_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"reloading", "deactivating", "inactive", "failed", "activating", ""})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void TestAlienBinderConnectionRetry::waitingStopsAndBeginsAnewWithTheRuntime()
{
    QFETCH(QString, state);
    QVERIFY(m_unit->become(active));
    Connection connection(persistent);
    pass(shortOfOneSecond + toleranceOfBoth);
    QVERIFY(hasTimer());

    QVERIFY(m_unit->become(state));
    QVERIFY(!hasTimer());

    QVERIFY(m_unit->become(active));
    LinkStory story(connection);
    pass(shortOfOneSecond);
    QCOMPARE(story.take(), QStringList());
    pass(toleranceOfBoth);
    QCOMPARE(story.take(), oneTry);
}

void TestAlienBinderConnectionRetry::deathWhileTheRuntimeIsNotActiveStartsNoTimer()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    QVERIFY(m_unit->become(QStringLiteral("failed")));
    LinkStory story(connection);

    FakeBinder::killService(alien);
    QVERIFY(settle());

    QCOMPARE(story.take().last(), QStringLiteral("servicemanager_get_service_sync alien"));
    QVERIFY(!hasTimer());
}

void TestAlienBinderConnectionRetry::eachLossBeginsWithOneSecond()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    for (int i = 0; i < 2; ++i) {
        FakeBinder::killService(alien);
        QVERIFY(settle());
        pass(shortOfOneSecond + toleranceOfBoth);
        FakeBinder::registerService(alien, {}, Notice::None);
        LinkStory story(connection);
        pass(shortOfTwoSeconds);
        QCOMPARE(story.take(), QStringList());
        pass(toleranceOfBoth);
        QCOMPARE(story.take().last(), QStringLiteral("connectionChanged true"));
    }
    FakeBinder::killService(alien);
    QVERIFY(settle());
    LinkStory story(connection);
    pass(shortOfOneSecond + toleranceOfBoth);
    QCOMPARE(story.take(), oneTry);
}

void TestAlienBinderConnectionRetry::destroyedConnectionTriesNoMore()
{
    m_unit->startOutAs(active);
    auto connection = std::make_unique<Connection>(persistent);
    QVERIFY(hasTimer());
    connection.reset();
    FakeBinder::clearLedger();

    QVERIFY(!hasTimer());
    pass(5s);
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

LUM_TEST_MAIN(TestAlienBinderConnectionRetry)
#include "tst_alienbinderconnectionretry.moc"
