// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/childprocess.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/remotefakebinder.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <thread>

using FakeBinder::ParcelWriter;

class TestRemoteFakeBinder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void theWorldIsSetUpBeforeTheFirstCall();
    void whatTheDaemonOffersIsSeen();
    void anObjectIsCalledAndCallsBack();
    void aHandlerAnswersWhileTheTestIsBlocked();
    void aFailureOfAServiceIsPassedOn();
    void requestsAreWaitedFor();
    void deathReachesTheDaemon();
    void failingClientsFail();
    void aDroppedNameIsSeen();
    void ledgerLeaksAndErrorsAreToldOver();
    void theTestMayBeGoneBeforeTheDaemon();
    void theDaemonMayBeGoneBeforeTheTest();

private:
    void start();

    std::unique_ptr<RemoteFakeBinder> m_binder;
    std::unique_ptr<ChildProcess> m_daemon;
    const QString m_alien = QStringLiteral("alien");
    const QString m_object = QStringLiteral("peer.object");
    FakeBinder::Call m_call;
};

void TestRemoteFakeBinder::init()
{
    m_binder = std::make_unique<RemoteFakeBinder>();
    m_daemon = std::make_unique<ChildProcess>();
    m_call.code = 5;
    m_call.interface = QStringLiteral("a.IObject");
    m_call.payload = ParcelWriter().int32(11).bytes();
}

void TestRemoteFakeBinder::cleanup()
{
    m_daemon.reset();
    m_binder.reset();
}

void TestRemoteFakeBinder::start()
{
    m_daemon->start(QStringLiteral(BINDER_PEER), {},
        {{QStringLiteral("FAKE_GBINDER_SOCKET"), m_binder->socketPath()}},
        ChildProcess::Collect::Errors);
    QVERIFY(m_daemon->waitForLine(QStringLiteral("up")));
}

void TestRemoteFakeBinder::theWorldIsSetUpBeforeTheFirstCall()
{
    m_binder->setPresent(false);
    m_daemon->start(QStringLiteral(BINDER_PEER), {},
        {{QStringLiteral("FAKE_GBINDER_SOCKET"), m_binder->socketPath()}},
        ChildProcess::Collect::Errors);
    QVERIFY(m_daemon->waitForExit());
    QCOMPARE(m_daemon->lines(), texts({"no device"}));
    QCOMPARE(m_daemon->exitCode(), 4);
}

void TestRemoteFakeBinder::whatTheDaemonOffersIsSeen()
{
    QVERIFY(m_binder->published().isEmpty());
    start();
    QVERIFY(m_binder->waitForPublished(m_object));
    const QVector<FakeBinder::PublishedService> expected = {
        {m_object, QStringLiteral("a.IObject"), 1}};
    QCOMPARE(m_binder->published(), expected);
}

void TestRemoteFakeBinder::anObjectIsCalledAndCallsBack()
{
    start();
    m_binder->registerService(m_alien, [](const FakeBinder::Request &request) {
        return FakeBinder::Reply::data(ParcelWriter().int32(qint32(request.code) * 2).bytes());
    });
    QVERIFY(m_daemon->waitForLine(QStringLiteral("connected")));
    const FakeBinder::Answer answer = m_binder->transact(m_object, m_call);
    QVERIFY(answer.delivered && answer.hasReply);
    QCOMPARE(answer.status, 0);
    QCOMPARE(answer.bytes, ParcelWriter().int32(10).bytes());
    const QVector<FakeBinder::Request> requests = m_binder->requests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().service, m_alien);
    QCOMPARE(requests.first().code, 5U);
    QCOMPARE(requests.first().interface, QStringLiteral("a.IAlien"));
    QCOMPARE(requests.first().payload, ParcelWriter().int32(11).bytes());
    m_binder->clearRequests();
    m_call.interface = QStringLiteral("");
    QVERIFY(m_binder->transactObject(1, m_call).delivered);
    QCOMPARE(m_binder->requests().size(), 1);
    QVERIFY(!m_binder->transactObject(2, m_call).delivered);
}

void TestRemoteFakeBinder::aHandlerAnswersWhileTheTestIsBlocked()
{
    // transact holds the test until the daemon's object returns, and that waits for this:
    start();
    const std::thread::id test = std::this_thread::get_id();
    bool inAnotherThread = false;
    m_binder->registerService(m_alien, [&](const FakeBinder::Request &) {
        inAnotherThread = std::this_thread::get_id() != test;
        // May set up more of the world, without waiting for it.
        m_binder->registerService(QStringLiteral("late"));
        return FakeBinder::Reply::data(ParcelWriter().int32(1).bytes());
    });
    QVERIFY(m_daemon->waitForLine(QStringLiteral("connected")));
    QVERIFY(m_binder->transact(m_object, m_call).hasReply);
    QVERIFY(inAnotherThread);
}

void TestRemoteFakeBinder::aFailureOfAServiceIsPassedOn()
{
    start();
    m_binder->registerService(
        m_alien, [](const FakeBinder::Request &) { return FakeBinder::Reply::failure(-61); });
    QVERIFY(m_daemon->waitForLine(QStringLiteral("connected")));
    const FakeBinder::Answer answer = m_binder->transact(m_object, m_call);
    QCOMPARE(answer.status, -61);
    QCOMPARE(answer.bytes, ParcelWriter().int32(-1).bytes());
}

void TestRemoteFakeBinder::requestsAreWaitedFor()
{
    start();
    m_binder->registerService(m_alien);
    QVERIFY(m_daemon->waitForLine(QStringLiteral("connected")));
    std::thread caller([this] { m_binder->transact(m_object, m_call); });
    const bool came = m_binder->waitForRequest(m_alien, 5);
    caller.join();
    QVERIFY(came);
}

void TestRemoteFakeBinder::deathReachesTheDaemon()
{
    start();
    m_binder->registerService(m_alien);
    QVERIFY(m_daemon->waitForLine(QStringLiteral("connected")));
    m_binder->killService(m_alien);
    QVERIFY(m_daemon->waitForLine(QStringLiteral("died")));
}

void TestRemoteFakeBinder::failingClientsFail()
{
    m_binder->failClients(m_alien);
    start();
    m_binder->registerService(m_alien);
    QVERIFY(m_daemon->waitForLine(QStringLiteral("not connected")));
}

void TestRemoteFakeBinder::aDroppedNameIsSeen()
{
    start();
    QVERIFY(m_binder->waitForPublished(m_object));
    m_binder->quitDaemon();
    QVERIFY(m_binder->waitForUnpublished(m_object));
    QVERIFY(m_daemon->waitForExit());
    QCOMPARE(m_daemon->exitCode(), 0);
    QCOMPARE(m_daemon->lines(), texts({"up", "down"}));
}

void TestRemoteFakeBinder::ledgerLeaksAndErrorsAreToldOver()
{
    start();
    m_binder->settle();
    QCOMPARE(m_binder->ledger(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_add_registration_handler alien 1",
            "servicemanager_new_local_object a.IObject", "servicename_new peer.object"}));
    QCOMPARE(m_binder->leaks(),
        texts({"servicemanager /dev/puddlejumper", "local_object a.IObject",
            "servicename peer.object", "registration_handler alien 1"}));
    QCOMPARE(m_binder->errors(), QStringList());
    m_binder->clearLedger();
    QCOMPARE(m_binder->ledger(), QStringList());
}

void TestRemoteFakeBinder::theTestMayBeGoneBeforeTheDaemon()
{
    start();
    m_binder.reset();
    QVERIFY(m_daemon->isRunning());
}

void TestRemoteFakeBinder::theDaemonMayBeGoneBeforeTheTest()
{
    start();
    m_daemon->kill();
    QVERIFY(!m_binder->waitForRequest(m_alien, 5));
    QCOMPARE(m_binder->ledger(), QStringList());
    m_binder->registerService(m_alien);
}

LUM_TEST_MAIN(TestRemoteFakeBinder)
#include "tst_remotefakebinder.moc"
