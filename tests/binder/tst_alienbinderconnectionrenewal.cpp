// SPDX-License-Identifier: BSD-3-Clause
#include "tests/binder/connection.h"
#include "tests/binder/connectiontest.h"
#include "tests/binder/linkstory.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <memory>

namespace {

const QString alien = QStringLiteral("alien");
const QString active = QStringLiteral("active");
const QString deactivating = QStringLiteral("deactivating");
const QString reloading = QStringLiteral("reloading");

} // namespace

class TestAlienBinderConnectionRenewal : public ConnectionTest
{
    Q_OBJECT

private Q_SLOTS:
    void activeWhileConnectedConnectsOnceMore();
    void replacedLinkIsReleasedBeforeTheServiceManager_data();
    void replacedLinkIsReleasedBeforeTheServiceManager();
    void replacedServiceIsStillHeardDying();
    void oneServiceWatchedTwiceDiesOnce();
    void activeWhileConnectedOnDemandDoesNothing();
    void serviceGoneAtSecondActiveKeepsTheClient();
    void missingDeviceLeavesItIdle_data();
    void missingDeviceLeavesItIdle();
    void missingDeviceIsTriedAgainAtTheNextActive();
    void missingClientLeavesPersistentWithoutHandler();
    void missingClientLeavesOnDemandReady();
};

void TestAlienBinderConnectionRenewal::activeWhileConnectedConnectsOnceMore()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    GBinderClient *const first = connection.client();
    LinkStory story(connection);
    LogCapture log;

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(),
        texts({"servicemanager_add_registration_handler alien 3",
            "servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 4", "client_new alien",
            "servicemanager_remove_handler 3", "connectionChanged true"}));
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")),
        texts({"debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "debug com.tovra.lumd.binder Connected to Alien Service alien"}));
    QVERIFY(connection.client());
    QVERIFY(connection.client() != first);
    // The first client still takes calls: a transaction that was made on it is not cut off.
    QCOMPARE(FakeBinder::leaks(),
        texts({"remote_object alien 2", "servicemanager /dev/puddlejumper", "client alien",
            "client alien", "death_handler alien 2", "death_handler alien 4"}));
}

void TestAlienBinderConnectionRenewal::replacedLinkIsReleasedBeforeTheServiceManager_data()
{
    QTest::addColumn<bool>("isDestroyed");
    QTest::newRow("the runtime goes down") << false;
    QTest::newRow("the connection goes") << true;
}

void TestAlienBinderConnectionRenewal::replacedLinkIsReleasedBeforeTheServiceManager()
{
    QFETCH(bool, isDestroyed);
    FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(active));
    auto connection = std::make_unique<Connection>(persistent);
    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));
    const QStringList handlers = FakeBinder::leaks().filter(QStringLiteral("death_handler"));
    QCOMPARE(handlers.size(), 2);
    const QString removal = QStringLiteral("remote_object_remove_handler alien ");
    const auto removalOf = [&removal](const QString &handler) {
        return removal + handler.section(QLatin1Char(' '), -1);
    };
    LinkStory story(*connection);

    if (isDestroyed)
        connection.reset();
    else
        QVERIFY(m_unit->become(deactivating));

    const QString unref = QStringLiteral("remote_object_unref alien");
    QCOMPARE(story.take(),
        (texts({"client_unref alien", "client_unref alien", "connectionChanged false"})
            + QStringList{removalOf(handlers.last()), unref, removalOf(handlers.first()), unref,
                QStringLiteral("servicemanager_unref /dev/puddlejumper")}));
    QCOMPARE(FakeBinder::leaks(), QStringList());
}

void TestAlienBinderConnectionRenewal::replacedServiceIsStillHeardDying()
{
    FakeBinder::registerService(alien); // object 1
    m_unit->startOutAs(active);
    Connection connection(persistent);
    FakeBinder::registerService(alien); // object 2
    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));
    LinkStory story(connection);
    LogCapture log(LogCapture::Level::Default);

    FakeBinder::killService(alien);
    QVERIFY(settle());
    QCOMPARE(log.take(), texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect."}));
    QCOMPARE(story.take(),
        texts({"client_unref alien", "connectionChanged false",
            "remote_object_remove_handler alien 4", "remote_object_unref alien",
            "servicemanager_add_registration_handler alien 5",
            "servicemanager_get_service_sync alien"}));

    FakeBinder::killRemoteObject(1);
    QVERIFY(settle());
    QCOMPARE(log.take(), texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect."}));
    QCOMPARE(story.take(),
        texts({"connectionChanged false", "servicemanager_remove_handler 5",
            "servicemanager_add_registration_handler alien 6",
            "servicemanager_get_service_sync alien"}));
}

void TestAlienBinderConnectionRenewal::oneServiceWatchedTwiceDiesOnce()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));
    LinkStory story(connection);
    LogCapture log(LogCapture::Level::Default);

    FakeBinder::killService(alien);
    QVERIFY(settle());

    // The first handler that is told removes the second one of the same object.
    QCOMPARE(
        log.lines(), texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect."}));
    QCOMPARE(story.take(),
        texts({"client_unref alien", "connectionChanged false",
            "remote_object_remove_handler alien 4", "remote_object_unref alien",
            "servicemanager_add_registration_handler alien 5",
            "servicemanager_get_service_sync alien"}));
}

void TestAlienBinderConnectionRenewal::activeWhileConnectedOnDemandDoesNothing()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    QVERIFY(connection.client());
    LinkStory story(connection);

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnectionRenewal::serviceGoneAtSecondActiveKeepsTheClient()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    GBinderClient *const client = connection.client();
    FakeBinder::unregisterService(alien);
    LinkStory story(connection);

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(),
        texts({"servicemanager_add_registration_handler alien 3",
            "servicemanager_get_service_sync alien"}));
    QVERIFY(client);
    QCOMPARE(connection.client(), client);
    QVERIFY(FakeBinder::leaks().contains(QStringLiteral("death_handler alien 2")));
}

void TestAlienBinderConnectionRenewal::missingDeviceLeavesItIdle_data()
{
    QTest::addColumn<bool>("mode");
    QTest::newRow("persistent") << persistent;
    QTest::newRow("on demand") << onDemand;
}

void TestAlienBinderConnectionRenewal::missingDeviceLeavesItIdle()
{
    QFETCH(bool, mode);
    FakeBinder::setPresent(false);
    QVERIFY(m_unit->become(QStringLiteral("inactive")));
    Connection connection(mode);
    LinkStory story(connection);
    LogCapture log(LogCapture::Level::Default);

    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(),
        texts({"servicemanager_new /dev/puddlejumper failed", "connectionChanged false"}));
    QCOMPARE(log.lines(),
        texts({"critical com.tovra.lumd.binder Could not get service manager for alien"}));

    // Nothing tries again before the next change.
    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(connection.transaction(1, false), nullptr);
    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnectionRenewal::missingDeviceIsTriedAgainAtTheNextActive()
{
    FakeBinder::registerService(alien);
    FakeBinder::setPresent(false);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);
    FakeBinder::setPresent(true);

    QVERIFY(m_unit->become(reloading));
    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take().last(), QStringLiteral("connectionChanged true"));
    QVERIFY(connection.client());
}

void TestAlienBinderConnectionRenewal::missingClientLeavesPersistentWithoutHandler()
{
    FakeBinder::registerService(alien);
    FakeBinder::failClients(alien);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_add_registration_handler alien 1",
            "servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 2", "client_new alien failed",
            "connectionChanged false", "remote_object_remove_handler alien 2",
            "remote_object_unref alien", "servicemanager_remove_handler 1"}));
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")),
        texts({"debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "debug com.tovra.lumd.binder Connected to Alien Service alien",
            "debug com.tovra.lumd.binder Could not create client for alien"}));
    QCOMPARE(FakeBinder::leaks(), texts({"servicemanager /dev/puddlejumper"}));

    FakeBinder::failClients(alien, false);
    QVERIFY(connection.client());
    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 3", "client_new alien",
            "connectionChanged true"}));
}

void TestAlienBinderConnectionRenewal::missingClientLeavesOnDemandReady()
{
    FakeBinder::registerService(alien);
    FakeBinder::failClients(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);

    QCOMPARE(connection.client(), nullptr);

    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 1", "client_new alien failed",
            "connectionChanged false", "remote_object_remove_handler alien 1",
            "remote_object_unref alien"}));
    QCOMPARE(FakeBinder::leaks(), texts({"servicemanager /dev/puddlejumper"}));
    FakeBinder::failClients(alien, false);
    QVERIFY(connection.client());
}

LUM_TEST_MAIN(TestAlienBinderConnectionRenewal)
#include "tst_alienbinderconnectionrenewal.moc"
