// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindertransaction.h"
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

} // namespace

class TestAlienBinderConnectionEnd : public ConnectionTest
{
    Q_OBJECT

private Q_SLOTS:
    void destroyedReleasesInOrder_data();
    void destroyedReleasesInOrder();
    void nothingReachesADestroyedConnection();
    void transactionCarriesCodeAndMode_data();
    void transactionCarriesCodeAndMode();
    void transactionIsNullWithoutALink();
    void transactionConnectsOnDemand();
    void transactionIsOrphanedWhenTheLinkGoes();
    void transactionGoesWithTheConnection();
    void onlyWarningsAreLoggedByDefault();
};

void TestAlienBinderConnectionEnd::destroyedReleasesInOrder_data()
{
    QTest::addColumn<bool>("mode");
    QTest::addColumn<bool>("isActive");
    QTest::addColumn<bool>("isRegistered");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("idle, persistent")
        << persistent << false << false << texts({"connectionChanged false"});
    QTest::newRow("idle, on demand")
        << onDemand << false << false << texts({"connectionChanged false"});
    QTest::newRow("waiting") << persistent << true << false
                             << texts(
                                    {"connectionChanged false", "servicemanager_remove_handler ID",
                                        "servicemanager_unref /dev/puddlejumper"});
    QTest::newRow("ready") << onDemand << true << false
                           << texts({"connectionChanged false",
                                  "servicemanager_unref /dev/puddlejumper"});
    const QStringList connected = texts(
        {"client_unref alien", "connectionChanged false", "remote_object_remove_handler alien ID",
            "remote_object_unref alien", "servicemanager_unref /dev/puddlejumper"});
    QTest::newRow("connected, persistent") << persistent << true << true << connected;
    QTest::newRow("connected, on demand") << onDemand << true << true << connected;
}

void TestAlienBinderConnectionEnd::destroyedReleasesInOrder()
{
    QFETCH(bool, mode);
    QFETCH(bool, isActive);
    QFETCH(bool, isRegistered);
    QFETCH(QStringList, lines);
    QVERIFY(m_unit->become(isActive ? active : QStringLiteral("inactive")));
    if (isRegistered)
        FakeBinder::registerService(alien);
    auto connection = std::make_unique<Connection>(mode);
    if (isRegistered)
        QVERIFY(connection->client());
    // The one handler that lives, whatever rows came before this one.
    const QStringList handlers = FakeBinder::leaks().filter(QStringLiteral("_handler "));
    if (!handlers.isEmpty())
        lines.replaceInStrings(
            QStringLiteral("ID"), handlers.first().section(QLatin1Char(' '), -1));
    LinkStory story(*connection);
    LogCapture log;

    connection.reset();

    QCOMPARE(story.take(), lines);
    QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.binder Destroying alien connection"}));
}

void TestAlienBinderConnectionEnd::nothingReachesADestroyedConnection()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    auto connection = std::make_unique<Connection>(persistent);
    auto waiting = std::make_unique<Connection>(persistent, "other");
    // Notices that are under way when the connections go.
    FakeBinder::killService(alien);
    FakeBinder::registerService(QStringLiteral("other"));
    connection.reset();
    waiting.reset();
    FakeBinder::clearLedger();
    LogCapture log;

    QVERIFY(settle());
    QVERIFY(m_unit->become(deactivating));

    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.binder")), QStringList());
}

void TestAlienBinderConnectionEnd::transactionCarriesCodeAndMode_data()
{
    QTest::addColumn<quint32>("code");
    QTest::addColumn<bool>("oneway");
    QTest::newRow("with reply") << 5U << false;
    QTest::newRow("oneway") << 7U << true;
    QTest::newRow("largest code") << 0x00ffffffU << false;
}

void TestAlienBinderConnectionEnd::transactionCarriesCodeAndMode()
{
    QFETCH(quint32, code);
    QFETCH(bool, oneway);
    FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(active));
    Connection connection(persistent);
    FakeBinder::clearRequests();

    AlienBinderTransaction *const transaction = connection.transaction(code, oneway);

    QVERIFY(transaction);
    QCOMPARE(transaction->parent(), &connection);
    QCOMPARE(transaction->execute(), 0);
    const FakeBinder::Request request = FakeBinder::requests().last();
    QCOMPARE(request.service, alien);
    QCOMPARE(request.interface, QStringLiteral("test.IAlien"));
    QCOMPARE(request.code, code);
    QCOMPARE(request.flags, oneway ? 1U : 0U);
}

void TestAlienBinderConnectionEnd::transactionIsNullWithoutALink()
{
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);
    QCOMPARE(connection.transaction(1, false), nullptr);
    QCOMPARE(story.take(), texts({"servicemanager_get_service_sync alien"}));
    QCOMPARE(connection.findChildren<AlienBinderTransaction *>().size(), 0);
}

void TestAlienBinderConnectionEnd::transactionConnectsOnDemand()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(onDemand);
    LinkStory story(connection);

    AlienBinderTransaction *const transaction = connection.transaction(1, false);

    QVERIFY(transaction);
    QCOMPARE(story.take().mid(4), texts({"connectionChanged true", "client_new_request alien"}));
    QCOMPARE(transaction->execute(), 0);
}

void TestAlienBinderConnectionEnd::transactionIsOrphanedWhenTheLinkGoes()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    Connection connection(persistent);
    const std::unique_ptr<AlienBinderTransaction> transaction(connection.transaction(1, false));
    QVERIFY(m_unit->become(deactivating));
    LogCapture log;

    QCOMPARE(transaction->execute(), -1);
    QCOMPARE(transaction->inputParcel()->readInt32(), -1);

    QCOMPARE(log.lines(),
        texts({"warning com.tovra.lumd.binder Cannot create input parcel. Returning empty"}));
    QCOMPARE(FakeBinder::requests().size(), 0);
}

void TestAlienBinderConnectionEnd::transactionGoesWithTheConnection()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    auto connection = std::make_unique<Connection>(persistent);
    QVERIFY(connection->transaction(9, false));
    LogCapture log;

    connection.reset();

    QCOMPARE(log.lines(),
        texts({"debug com.tovra.lumd.binder Destroying alien connection",
            "debug com.tovra.lumd.binder Destroying transaction 9"}));
}

void TestAlienBinderConnectionEnd::onlyWarningsAreLoggedByDefault()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    LogCapture log(LogCapture::Level::Default);
    {
        Connection connection(persistent);
        FakeBinder::killService(alien);
        QVERIFY(settle());
    }
    QCOMPARE(
        log.lines(), texts({"warning com.tovra.lumd.binder alien died! Trying to reconnect."}));
}

LUM_TEST_MAIN(TestAlienBinderConnectionEnd)
#include "tst_alienbinderconnectionend.moc"
