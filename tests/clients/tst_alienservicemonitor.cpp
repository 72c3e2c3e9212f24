// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienservicemonitor.h"

#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

const QString alien = QStringLiteral("alien");
const QString active = QStringLiteral("active");
const QString path = QStringLiteral("/data/a.apk");
constexpr bool accepted = true;
constexpr bool refused = false;

QString alienCall(quint32 code, const ParcelWriter &body)
{
    return callText("alien", "alien.applications.IAlienService", code, body);
}

GBinderLocalReply *ignoreCall(
    GBinderLocalObject *, GBinderRemoteRequest *, guint, guint, int *, void *)
{
    return nullptr;
}

} // namespace

class TestAlienServiceMonitor : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void isOneObjectMadeOnTheFirstCall();
    void connectsAsSoonAsTheServiceIsThere();
    void launchSendsThePackageName();
    void launchLooksAtNothing_data();
    void launchLooksAtNothing();
    void installSendsPathAndObserver();
    void installWithoutObserverSendsANullObject();
    void installIsAcceptedByTheFirstWord_data();
    void installIsAcceptedByTheFirstWord();
    void nothingIsSentWithoutALink();
    void callsLeaveNothingBehind();
};

void TestAlienServiceMonitor::isOneObjectMadeOnTheFirstCall()
{
    m_unit->startOutAs(active);
    QCOMPARE(FakeBinder::ledger(), QStringList());
    AlienServiceMonitor *const monitor = AlienServiceMonitor::instance();
    QVERIFY(monitor);
    QVERIFY(!FakeBinder::ledger().isEmpty());
    QCOMPARE(monitor->parent(), nullptr);
    QCOMPARE(monitor->name(), "alien");

    const QStringList ledger = FakeBinder::ledger();
    QCOMPARE(AlienServiceMonitor::instance(), monitor);
    QCOMPARE(FakeBinder::ledger(), ledger);
}

void TestAlienServiceMonitor::connectsAsSoonAsTheServiceIsThere()
{
    m_unit->startOutAs(active);
    AlienServiceMonitor *const monitor = AlienServiceMonitor::instance();
    QSignalSpy spy(monitor, &AlienBinderConnection::connectionChanged);
    FakeBinder::registerService(alien);
    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().toBool(), true);
}

void TestAlienServiceMonitor::launchSendsThePackageName()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    AlienServiceMonitor::instance()->launchPackage(QStringLiteral("com.foo"));
    AlienServiceMonitor::instance()->launchPackage(QStringLiteral(""));
    QCOMPARE(takeCalls(),
        QStringList({alienCall(1, body().string16(QStringLiteral("com.foo"))),
            alienCall(1, body().string16(QStringLiteral("")))}));
}

void TestAlienServiceMonitor::launchLooksAtNothing_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::newRow("answered") << Reply::data(ParcelWriter().int32(-1).bytes());
    QTest::newRow("failed") << Reply::failure(-32);
    QTest::newRow("not answered") << Reply::none();
}

void TestAlienServiceMonitor::launchLooksAtNothing()
{
    QFETCH(Reply, reply);
    FakeBinder::registerService(alien, [&reply](const FakeBinder::Request &) { return reply; });
    QVERIFY(m_unit->become(active));
    AlienServiceMonitor *const monitor = AlienServiceMonitor::instance();
    LogCapture log;
    monitor->launchPackage(QStringLiteral("com.foo"));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls().size(), 1);
    QVERIFY(m_unit->become(QStringLiteral("deactivating")));
}

void TestAlienServiceMonitor::installSendsPathAndObserver()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    const GBinder::ServiceManager manager(gbinder_servicemanager_new("/dev/puddlejumper"));
    const GBinder::LocalObject observer(gbinder_servicemanager_new_local_object(
        manager.get(), "test.IObserver", &ignoreCall, nullptr));

    AlienServiceMonitor::instance()->installPackage(path, observer.get());

    const quint32 id = handedOver();
    QVERIFY(id != 0);
    QCOMPARE(takeCalls(), QStringList(alienCall(2, body().string16(path).localObject(id))));
}

void TestAlienServiceMonitor::installWithoutObserverSendsANullObject()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    AlienServiceMonitor::instance()->installPackage(path, nullptr);
    QCOMPARE(takeCalls(), QStringList(alienCall(2, body().string16(path).nullObject())));
}

void TestAlienServiceMonitor::installIsAcceptedByTheFirstWord_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<bool>("result");
    QTest::newRow("1") << Reply::data(ParcelWriter().int32(1).bytes()) << accepted;
    QTest::newRow("2") << Reply::data(ParcelWriter().int32(2).bytes()) << accepted;
    QTest::newRow("-1") << Reply::data(ParcelWriter().int32(-1).bytes()) << accepted;
    QTest::newRow("0") << Reply::data(ParcelWriter().int32(0).bytes()) << refused;
    QTest::newRow("0 before 1") << Reply::data(ParcelWriter().int32(0).int32(1).bytes()) << refused;
    QTest::newRow("empty") << Reply::data({}) << refused;
    QTest::newRow("two bytes") << Reply::data(QByteArray(2, '\1')) << refused;
    QTest::newRow("failed") << Reply::failure(-32) << refused;
    // What there is of an answer is read.
    QTest::newRow("failed and yet a result")
        << Reply::failureWith(-5, ParcelWriter().int32(1).bytes()) << accepted;
    QTest::newRow("not answered") << Reply::none() << refused;
}

void TestAlienServiceMonitor::installIsAcceptedByTheFirstWord()
{
    QFETCH(Reply, reply);
    QFETCH(bool, result);
    FakeBinder::registerService(alien, [&reply](const FakeBinder::Request &) { return reply; });
    QVERIFY(m_unit->become(active));
    AlienServiceMonitor *const monitor = AlienServiceMonitor::instance();
    LogCapture log;
    QCOMPARE(monitor->installPackage(path, nullptr), result);
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(m_unit->become(QStringLiteral("deactivating")));
}

void TestAlienServiceMonitor::nothingIsSentWithoutALink()
{
    FakeBinder::registerService(alien);
    AlienServiceMonitor *const monitor = AlienServiceMonitor::instance();
    LogCapture log;
    monitor->launchPackage(QStringLiteral("com.foo"));
    QCOMPARE(monitor->installPackage(path, nullptr), false);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienServiceMonitor::callsLeaveNothingBehind()
{
    FakeBinder::registerService(alien);
    m_unit->startOutAs(active);
    AlienServiceMonitor *const monitor = AlienServiceMonitor::instance();
    FakeBinder::clearLedger();
    monitor->launchPackage(QStringLiteral("com.foo"));
    monitor->installPackage(path, nullptr);
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request alien", "client_transact_sync_reply alien 1",
            "local_request_unref alien", "remote_reply_unref alien", "client_new_request alien",
            "client_transact_sync_reply alien 2", "local_request_unref alien",
            "remote_reply_unref alien"}));
}

LUM_TEST_MAIN(TestAlienServiceMonitor)
#include "tst_alienservicemonitor.moc"
