// SPDX-License-Identifier: BSD-3-Clause
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

class TestAlienBinderConnectionLoss : public ConnectionTest
{
    Q_OBJECT

private Q_SLOTS:
    void connectedDropsEverythingInOrderWhenTheRuntimeGoesDown_data();
    void connectedDropsEverythingInOrderWhenTheRuntimeGoesDown();
    void connectedStaysInOtherStates_data();
    void connectedStaysInOtherStates();
    void connectsAgainAfterTheRuntimeCameBack();
    void persistentWaitsAfterADeath();
    void persistentReconnectsAfterADeath();
    void onDemandIsReadyAfterADeath();
    void timeoutDropsTheLinkAndKeepsTheManager();
    void linkClosesFiveSecondsAfterTheConnect();
    void deactivatingAlwaysEmitsFalse_data();
    void deactivatingAlwaysEmitsFalse();
};

void TestAlienBinderConnectionLoss::connectedDropsEverythingInOrderWhenTheRuntimeGoesDown_data()
{
    QTest::addColumn<bool>("mode");
    QTest::addColumn<QString>("deathHandler");
    QTest::newRow("persistent") << persistent << QStringLiteral("2");
    QTest::newRow("on demand") << onDemand << QStringLiteral("3");
}

void TestAlienBinderConnectionLoss::connectedDropsEverythingInOrderWhenTheRuntimeGoesDown()
{
    QFETCH(bool, mode);
    QFETCH(QString, deathHandler);
    FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(active));
    Connection connection(mode);
    QVERIFY(connection.client());
    LinkStory story(connection);
    LogCapture log;

    QVERIFY(m_unit->become(deactivating));

    QCOMPARE(story.take(),
        (QStringList{QStringLiteral("client_unref alien"),
            QStringLiteral("connectionChanged false"),
            QStringLiteral("remote_object_remove_handler alien ") + deathHandler,
            QStringLiteral("remote_object_unref alien"),
            QStringLiteral("servicemanager_unref /dev/puddlejumper")}));
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")), QStringList());
    QCOMPARE(connection.client(), nullptr);
    QCOMPARE(FakeBinder::leaks(), QStringList());
}

void TestAlienBinderConnectionLoss::connectedStaysInOtherStates_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"reloading", "inactive", "failed", "activating", "maintenance", ""})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void TestAlienBinderConnectionLoss::connectedStaysInOtherStates()
{
    QFETCH(QString, state);
    FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(active));
    Connection connection(persistent);
    GBinderClient *const client = connection.client();
    LinkStory story(connection);

    QVERIFY(m_unit->become(state));

    QVERIFY(client);
    QCOMPARE(connection.client(), client);
    QCOMPARE(story.take(), QStringList());
}

void TestAlienBinderConnectionLoss::connectsAgainAfterTheRuntimeCameBack()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    QVERIFY(m_unit->become(deactivating));
    QVERIFY(m_unit->become(QStringLiteral("inactive")));
    QVERIFY(m_unit->become(QStringLiteral("activating")));
    QCOMPARE(FakeBinder::leaks(), QStringList());
    LinkStory story(connection);

    QVERIFY(m_unit->become(active));

    QCOMPARE(story.take(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_add_registration_handler alien 3",
            "servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 4", "client_new alien",
            "servicemanager_remove_handler 3", "connectionChanged true"}));
}

void TestAlienBinderConnectionLoss::persistentWaitsAfterADeath()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    FakeBinder::killService(alien);
    QVERIFY(settle());

    QCOMPARE(story.take(),
        texts({"client_unref alien", "connectionChanged false",
            "remote_object_remove_handler alien 2", "remote_object_unref alien",
            "servicemanager_add_registration_handler alien 3",
            "servicemanager_get_service_sync alien"}));
    QCOMPARE(log.take(),
        texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect.",
            "debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "debug com.tovra.lumd.binder Could not find remote object for alien"}));

    FakeBinder::registerService(alien);
    QVERIFY(settle());
    QCOMPARE(story.take(),
        texts({"servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 4", "client_new alien",
            "servicemanager_remove_handler 3", "connectionChanged true"}));
}

void TestAlienBinderConnectionLoss::persistentReconnectsAfterADeath()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    LinkStory story(connection);
    LogCapture log;

    FakeBinder::killService(alien);
    FakeBinder::registerService(alien, {}, Notice::None);
    QVERIFY(settle());

    QCOMPARE(story.take(),
        texts({"client_unref alien", "connectionChanged false",
            "remote_object_remove_handler alien 2", "remote_object_unref alien",
            "servicemanager_add_registration_handler alien 3",
            "servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 4", "client_new alien",
            "servicemanager_remove_handler 3", "connectionChanged true"}));
    QCOMPARE(log.lines(),
        texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect.",
            "debug com.tovra.lumd.binder Connecting to Alien service: alien",
            "debug com.tovra.lumd.binder Connected to Alien Service alien"}));
}

void TestAlienBinderConnectionLoss::onDemandIsReadyAfterADeath()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    QVERIFY(connection.client());
    LinkStory story(connection);
    LogCapture log;

    FakeBinder::killService(alien);
    FakeBinder::registerService(alien, {}, Notice::None);
    QVERIFY(settle());

    QCOMPARE(story.take(),
        texts({"client_unref alien", "connectionChanged false",
            "remote_object_remove_handler alien 1", "remote_object_unref alien"}));
    QCOMPARE(
        log.lines(), texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect."}));
    QVERIFY(connection.client());
}

void TestAlienBinderConnectionLoss::timeoutDropsTheLinkAndKeepsTheManager()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    QVERIFY(connection.client());
    LinkStory story(connection);
    LogCapture log;

    // The slot of the timer; that the timer calls it is seen in the test with the real wait.
    QVERIFY(QMetaObject::invokeMethod(&connection, "onTimeout", Qt::DirectConnection));

    QCOMPARE(story.take(),
        texts({"client_unref alien", "connectionChanged false",
            "remote_object_remove_handler alien 1", "remote_object_unref alien"}));
    QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.binder Timing out alien"}));
    QCOMPARE(FakeBinder::leaks(), texts({"servicemanager /dev/puddlejumper"}));
    QVERIFY(connection.client());
}

void TestAlienBinderConnectionLoss::linkClosesFiveSecondsAfterTheConnect()
{
    for (const char *name : {"used", "dropped", "reconnected", "persistent"})
        FakeBinder::registerService(QString::fromLatin1(name));
    m_unit->startOutAs(active);
    Connection used(onDemand, "used");
    Connection dropped(onDemand, "dropped");
    Connection reconnected(onDemand, "reconnected");
    Connection lasting(persistent, "persistent");
    LogCapture log;
    QStringList events;
    const auto timeouts = [&log] { return log.lines().filter(QStringLiteral("Timing out")); };

    QTimer::singleShot(
        4500, Qt::PreciseTimer, this, [&] { events.append(QStringLiteral("before")); });
    QVERIFY(dropped.client());
    QVERIFY(reconnected.client());
    GBinderClient *const client = used.client();
    QVERIFY(client);
    connect(&used, &AlienBinderConnection::connectionChanged, this, [&](bool connected) {
        events.append(connected ? QStringLiteral("connected") : QStringLiteral("closed"));
    });

    // One link dies and stays down, one dies and is used again.
    FakeBinder::killService(QStringLiteral("dropped"));
    FakeBinder::killService(QStringLiteral("reconnected"));
    FakeBinder::registerService(QStringLiteral("reconnected"), {}, Notice::None);
    GBinderClient *second = nullptr;
    QTimer::singleShot(2500, Qt::PreciseTimer, this, [&] {
        second = reconnected.client();
        // A use does not make the link last longer.
        if (used.client() != client)
            events.append(QStringLiteral("another client"));
    });
    QTimer::singleShot(
        6500, Qt::PreciseTimer, this, [&] { events.append(QStringLiteral("after")); });
    for (int i = 0; i < 70; ++i) {
        shiftClock(std::chrono::milliseconds(100));
        QVERIFY(settle());
    }

    QCOMPARE(events, texts({"before", "closed", "after"}));
    QCOMPARE(timeouts(), texts({"debug com.tovra.lumd.binder Timing out used"}));
    // Its five seconds began anew; the first ones were stopped with the first link.
    QVERIFY(second);
    QCOMPARE(reconnected.client(), second);
    QVERIFY(FakeBinder::leaks().contains(QStringLiteral("client persistent")));
    used.disconnect(this);
}

void TestAlienBinderConnectionLoss::deactivatingAlwaysEmitsFalse_data()
{
    QTest::addColumn<bool>("mode");
    QTest::newRow("persistent") << persistent;
    QTest::newRow("on demand") << onDemand;
}

void TestAlienBinderConnectionLoss::deactivatingAlwaysEmitsFalse()
{
    QFETCH(bool, mode);
    QVERIFY(m_unit->become(QStringLiteral("inactive")));
    Connection connection(mode);
    LinkStory story(connection);

    QVERIFY(m_unit->become(deactivating));
    QCOMPARE(story.take(), texts({"connectionChanged false"}));

    QVERIFY(m_unit->become(QStringLiteral("inactive")));
    QVERIFY(m_unit->become(deactivating));
    QCOMPARE(story.take(), texts({"connectionChanged false"}));
}

LUM_TEST_MAIN(TestAlienBinderConnectionLoss)
#include "tst_alienbinderconnectionloss.moc"
