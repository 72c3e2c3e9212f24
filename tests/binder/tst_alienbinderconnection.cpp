// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/servicecontroller.h"
#include "tests/binder/connection.h"
#include "tests/binder/connectiontest.h"
#include "tests/binder/linkstory.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::Notice;

namespace {

const QString alien = QStringLiteral("alien");
const QString active = QStringLiteral("active");
const QString deactivating = QStringLiteral("deactivating");
const QString reloading = QStringLiteral("reloading");

} // namespace

class TestAlienBinderConnection : public ConnectionTest
{
    Q_OBJECT

private Q_SLOTS:
    void staysIdleUnlessTheRuntimeIsActive_data();
    void staysIdleUnlessTheRuntimeIsActive();
    void staysIdleWhenTheUnitCannotBeLoaded();
    void nameIsTheOneOfTheService();
    void persistentConnectsToARegisteredService();
    void persistentWaitsForAMissingService();
    void onDemandOnlyOpensTheServiceManager();
    void connectsInsideTheConstructorWhenTheRuntimeIsActive();
    void clientIsThereWhenTheSignalSaysTrue_data();
    void clientIsThereWhenTheSignalSaysTrue();
    void waitingConnectsWhenTheServiceRegisters_data();
    void waitingConnectsWhenTheServiceRegisters();
    void waitingTriesAgainForAClient();
    void waitingStaysWhenTheNoticeWasWrong();
    void secondActiveWhileWaitingAddsNoHandler();
    void waitingIsDroppedWhenTheRuntimeGoesDown();
    void readyConnectsForAClient();
    void readyStaysWhenTheServiceIsMissing();
    void readyIsDroppedWhenTheRuntimeGoesDown();
    void registeredServiceDoesNotConnectOnDemand();
    void secondActiveWhileReadyDoesNothing();
    void clientGivesTheLiveOne_data();
    void clientGivesTheLiveOne();
};

void TestAlienBinderConnection::staysIdleUnlessTheRuntimeIsActive_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("mode");
    for (const char *state : {"inactive", "activating", "deactivating", "failed", "reloading",
             "maintenance", "Active", ""}) {
        QTest::addRow("persistent, %s", state) << QString::fromLatin1(state) << persistent;
        QTest::addRow("on demand, %s", state) << QString::fromLatin1(state) << onDemand;
    }
}

void TestAlienBinderConnection::staysIdleUnlessTheRuntimeIsActive()
{
    QFETCH(QString, state);
    QFETCH(bool, mode);
    FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(state));
    LogCapture log;
    FakeBinder::clearLedger();
    Connection connection(mode);

    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(connection.transaction(1, false), nullptr);

    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderConnection::staysIdleWhenTheUnitCannotBeLoaded()
{
    FakeBinder::registerService(alien);
    m_unit->systemd().failLoadUnit(QStringLiteral("Unit not found."));
    LogCapture log;
    Connection connection(persistent);

    QCOMPARE(connection.client(), nullptr);

    QCOMPARE(ServiceController::instance()->serviceState(), QStringLiteral("invalid"));
    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")), QStringList());
}

void TestAlienBinderConnection::nameIsTheOneOfTheService()
{
    const char name[] = "alien";
    const AlienBinderConnection connection(name, "test.IAlien", persistent, nullptr);
    QCOMPARE(connection.name(), static_cast<const char *>(name));
}

void TestAlienBinderConnection::persistentConnectsToARegisteredService()
{
    FakeBinder::registerService(alien);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_add_registration_handler alien 1",
            "servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 2", "client_new alien",
            "servicemanager_remove_handler 1", "connectionChanged true"}));
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")),
        texts({"debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "debug com.tovra.lumd.binder Connected to Alien Service alien"}));
    QCOMPARE(FakeBinder::leaks(),
        texts({"remote_object alien", "servicemanager /dev/puddlejumper", "client alien",
            "death_handler alien 2"}));
    QVERIFY(connection.client());
    QCOMPARE(QByteArray(gbinder_client_interface(connection.client())), QByteArray("test.IAlien"));
}

void TestAlienBinderConnection::persistentWaitsForAMissingService()
{
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_add_registration_handler alien 1",
            "servicemanager_get_service_sync alien"}));
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")),
        texts({"debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "debug com.tovra.lumd.binder Could not find remote object for alien"}));
}

void TestAlienBinderConnection::onDemandOnlyOpensTheServiceManager()
{
    FakeBinder::registerService(alien);
    Connection connection(onDemand);
    LinkStory story(connection);
    LogCapture log;

    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(), texts({"servicemanager_new /dev/puddlejumper"}));
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")), QStringList());
}

void TestAlienBinderConnection::connectsInsideTheConstructorWhenTheRuntimeIsActive()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    {
        Connection connection(persistent);
        const QSignalSpy spy(&connection, &AlienBinderConnection::connectionChanged);
        QCOMPARE(FakeBinder::ledger().last(), QStringLiteral("servicemanager_remove_handler 1"));
        QVERIFY(connection.client());
        QVERIFY(settle());
        // A slot that is connected now has missed the signal.
        QCOMPARE(spy.count(), 0);
    }
    FakeBinder::clearLedger();
    Connection connection(onDemand);
    QCOMPARE(FakeBinder::ledger(), texts({"servicemanager_new /dev/puddlejumper"}));
}

void TestAlienBinderConnection::clientIsThereWhenTheSignalSaysTrue_data()
{
    QTest::addColumn<bool>("mode");
    QTest::newRow("persistent") << persistent;
    QTest::newRow("on demand") << onDemand;
}

void TestAlienBinderConnection::clientIsThereWhenTheSignalSaysTrue()
{
    QFETCH(bool, mode);
    FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(QStringLiteral("inactive")));
    Connection connection(mode);
    GBinderClient *seen = nullptr;
    connect(&connection, &AlienBinderConnection::connectionChanged, this, [&](bool connected) {
        if (connected)
            seen = connection.client();
    });

    QVERIFY(m_unit->become(active));
    GBinderClient *const client = connection.client();

    QVERIFY(client);
    QCOMPARE(seen, client);
    connection.disconnect(this);
}

void TestAlienBinderConnection::waitingConnectsWhenTheServiceRegisters_data()
{
    QTest::addColumn<int>("notice");
    QTest::newRow("told from the main loop") << int(Notice::Deferred);
    QTest::newRow("told at once") << int(Notice::Synchronous);
}

void TestAlienBinderConnection::waitingConnectsWhenTheServiceRegisters()
{
    QFETCH(int, notice);
    FakeBinder::unregisterService(alien);
    QVERIFY(m_unit->become(active));
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;
    const QStringList waiting = FakeBinder::leaks();
    QCOMPARE(waiting.size(), 2);
    const QString handler = waiting.last().section(QLatin1Char(' '), -1);

    FakeBinder::registerService(alien, {}, Notice(notice));
    QVERIFY(settle());

    const QString deathHandler = QString::number(handler.toInt() + 1);
    QCOMPARE(story.take(),
        (QStringList{QStringLiteral("servicemanager_get_service_sync alien"),
            QStringLiteral("remote_object_ref alien"),
            QStringLiteral("remote_object_add_death_handler alien ") + deathHandler,
            QStringLiteral("client_new alien"),
            QStringLiteral("servicemanager_remove_handler ") + handler,
            QStringLiteral("connectionChanged true")}));
    QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.binder Connected to Alien Service alien"}));

    // Only the death handler is left.
    FakeBinder::notifyRegistration(alien, Notice::Synchronous);
    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnection::waitingTriesAgainForAClient()
{
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);

    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(story.take(), texts({"servicemanager_get_service_sync alien"}));

    FakeBinder::registerService(alien, {}, Notice::None);
    QVERIFY(connection.client());
    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 2", "client_new alien",
            "servicemanager_remove_handler 1", "connectionChanged true"}));
}

void TestAlienBinderConnection::waitingStaysWhenTheNoticeWasWrong()
{
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    FakeBinder::notifyRegistration(alien);
    QVERIFY(settle());

    QCOMPARE(story.take(), texts({"servicemanager_get_service_sync alien"}));
    QCOMPARE(
        log.lines(), texts({"debug com.tovra.lumd.binder Could not find remote object for alien"}));
    QCOMPARE(FakeBinder::leaks(),
        texts({"servicemanager /dev/puddlejumper", "registration_handler alien 1"}));
}

void TestAlienBinderConnection::secondActiveWhileWaitingAddsNoHandler()
{
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(), QStringList());
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")), QStringList());
}

void TestAlienBinderConnection::waitingIsDroppedWhenTheRuntimeGoesDown()
{
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);

    QVERIFY(m_unit->become(deactivating));

    QCOMPARE(story.take(),
        texts({"connectionChanged false", "servicemanager_remove_handler 1",
            "servicemanager_unref /dev/puddlejumper"}));
    QCOMPARE(FakeBinder::leaks(), QStringList());
}

void TestAlienBinderConnection::readyConnectsForAClient()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);
    LogCapture log;
    QVERIFY(connection.client());
    QVERIFY(connection.isConnected());

    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 1", "client_new alien",
            "connectionChanged true"}));
    QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.binder Connected to Alien Service alien"}));
}

void TestAlienBinderConnection::readyStaysWhenTheServiceIsMissing()
{
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);
    LogCapture log;

    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(connection.client(), nullptr);
    QVERIFY(!connection.isConnected()); // asks nobody

    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "servicemanager_get_service_sync alien"}));
    QCOMPARE(log.lines(),
        texts({"debug com.tovra.lumd.binder Could not find remote object for alien",
            "debug com.tovra.lumd.binder Could not find remote object for alien"}));
    QCOMPARE(FakeBinder::leaks(), texts({"servicemanager /dev/puddlejumper"}));
}

void TestAlienBinderConnection::readyIsDroppedWhenTheRuntimeGoesDown()
{
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);

    QVERIFY(m_unit->become(deactivating));

    QCOMPARE(
        story.take(), texts({"connectionChanged false", "servicemanager_unref /dev/puddlejumper"}));
    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnection::registeredServiceDoesNotConnectOnDemand()
{
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);

    FakeBinder::registerService(alien);
    QVERIFY(settle());

    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnection::secondActiveWhileReadyDoesNothing()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnection::clientGivesTheLiveOne_data()
{
    QTest::addColumn<bool>("mode");
    QTest::newRow("persistent") << persistent;
    QTest::newRow("on demand") << onDemand;
}

void TestAlienBinderConnection::clientGivesTheLiveOne()
{
    QFETCH(bool, mode);
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(mode);
    GBinderClient *const client = connection.client();
    LinkStory story(connection);

    QVERIFY(client);
    QCOMPARE(connection.client(), client);

    QCOMPARE(story.take(), QStringList());
}

LUM_TEST_MAIN(TestAlienBinderConnection)
#include "tst_alienbinderconnection.moc"
