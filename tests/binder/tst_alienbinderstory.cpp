// SPDX-License-Identifier: BSD-3-Clause
// The lines of the log at their places among the gbinder calls and the signals.
#include "binder/alienbindertransaction.h"
#include "tests/binder/connection.h"
#include "tests/binder/connectiontest.h"
#include "tests/binder/linkstory.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <memory>

namespace {

const QString alien = QStringLiteral("alien");
const QString active = QStringLiteral("active");

/// A connection and what it does and says.
struct ToldConnection : Connection
{
    explicit ToldConnection(bool isPersistent) : Connection(isPersistent) { }

    LogCapture log;
    LinkStory story{*this, log};
};

} // namespace

class TestAlienBinderStory : public ConnectionTest
{
    Q_OBJECT

private Q_SLOTS:
    void connectionIsToldOnceTheObjectIsHeld();
    void missingServiceIsToldBehindTheQuestion();
    void missingManagerIsToldBeforeTheSignal();
    void missingClientIsToldBeforeTheLinkIsDropped();
    void deathIsToldBeforeTheLinkIsDropped();
    void timeoutIsToldBeforeTheLinkIsDropped();
    void endIsToldBeforeTheLinkIsDropped();
    void endOfATransactionIsToldBeforeItsMessagesGo();
};

void TestAlienBinderStory::connectionIsToldOnceTheObjectIsHeld()
{
    FakeBinder::registerService(alien);
    ToldConnection connection(persistent);
    QVERIFY(m_unit->become(active));
    QCOMPARE(connection.story.take(),
        texts({"servicemanager_new /dev/puddlejumper",
            "debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "servicemanager_add_registration_handler alien 1",
            "servicemanager_get_service_sync alien", "remote_object_ref alien",
            "debug com.tovra.lumd.binder Connected to Alien Service alien",
            "remote_object_add_death_handler alien 2", "client_new alien",
            "servicemanager_remove_handler 1", "connectionChanged true"}));
}

void TestAlienBinderStory::missingServiceIsToldBehindTheQuestion()
{
    m_unit->startOutAs(active);
    ToldConnection connection(onDemand);
    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(connection.story.take(),
        texts({"servicemanager_get_service_sync alien",
            "debug com.tovra.lumd.binder Could not find remote object for alien"}));
}

void TestAlienBinderStory::missingManagerIsToldBeforeTheSignal()
{
    FakeBinder::setPresent(false);
    ToldConnection connection(persistent);
    QVERIFY(m_unit->become(active));
    QCOMPARE(connection.story.take(),
        texts({"servicemanager_new /dev/puddlejumper failed",
            "critical com.tovra.lumd.binder Could not get service manager for alien",
            "connectionChanged false"}));
}

void TestAlienBinderStory::missingClientIsToldBeforeTheLinkIsDropped()
{
    FakeBinder::registerService(alien);
    FakeBinder::failClients(alien);
    m_unit->startOutAs(active);
    ToldConnection connection(onDemand);
    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(connection.story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "debug com.tovra.lumd.binder Connected to Alien Service alien",
            "remote_object_add_death_handler alien 1", "client_new alien failed",
            "debug com.tovra.lumd.binder Could not create client for alien",
            "connectionChanged false", "remote_object_remove_handler alien 1",
            "remote_object_unref alien"}));
}

void TestAlienBinderStory::deathIsToldBeforeTheLinkIsDropped()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    ToldConnection connection(persistent);
    FakeBinder::killService(alien);
    QVERIFY(settle());
    QCOMPARE(connection.story.take(),
        texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect.",
            "client_unref alien", "connectionChanged false", "remote_object_remove_handler alien 2",
            "remote_object_unref alien",
            "debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "servicemanager_add_registration_handler alien 3",
            "servicemanager_get_service_sync alien",
            "debug com.tovra.lumd.binder Could not find remote object for alien"}));
}

void TestAlienBinderStory::timeoutIsToldBeforeTheLinkIsDropped()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    QVERIFY(connection.client());
    LogCapture log;
    LinkStory story(connection, log);
    // To the millisecond, by the timer itself.
    shiftClock(std::chrono::milliseconds(4999));
    QVERIFY(settle());
    QCOMPARE(story.take(), QStringList());
    shiftClock(std::chrono::milliseconds(1));
    QVERIFY(settle());
    QCOMPARE(story.take(),
        texts({"debug com.tovra.lumd.binder Timing out alien", "client_unref alien",
            "connectionChanged false", "remote_object_remove_handler alien 1",
            "remote_object_unref alien"}));
}

void TestAlienBinderStory::endIsToldBeforeTheLinkIsDropped()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    auto connection = std::make_unique<Connection>(persistent);
    LogCapture log;
    LinkStory story(*connection, log);
    connection.reset();
    QCOMPARE(story.take(),
        texts({"debug com.tovra.lumd.binder Destroying alien connection", "client_unref alien",
            "connectionChanged false", "remote_object_remove_handler alien 2",
            "remote_object_unref alien", "servicemanager_unref /dev/puddlejumper"}));
}

void TestAlienBinderStory::endOfATransactionIsToldBeforeItsMessagesGo()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    std::unique_ptr<AlienBinderTransaction> waiting(connection.transaction(8, false));
    QVERIFY(waiting->start());
    std::unique_ptr<AlienBinderTransaction> answered(connection.transaction(9, false));
    QCOMPARE(answered->execute(), 0);
    LogCapture log;
    LinkStory story(connection, log);
    answered.reset();
    QCOMPARE(story.take(),
        texts({"debug com.tovra.lumd.binder Destroying transaction 9", "local_request_unref alien",
            "remote_reply_unref alien"}));
    waiting.reset();
    QCOMPARE(story.take().mid(0, 2),
        texts({"debug com.tovra.lumd.binder Destroying transaction 8", "client_cancel alien"}));
    QVERIFY(settle());
}

LUM_TEST_MAIN(TestAlienBinderStory)
#include "tst_alienbinderstory.moc"
