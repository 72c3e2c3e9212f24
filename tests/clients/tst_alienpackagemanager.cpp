// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienpackagemanager.h"

#include "clients/alienservicemonitor.h"
#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <memory>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

const QString package = QStringLiteral("package");
const QString alien = QStringLiteral("alien");
const QString active = QStringLiteral("active");
const QString deactivating = QStringLiteral("deactivating");
const QString path = QStringLiteral("/data/a.apk");
const QString app = QStringLiteral("com.foo");
constexpr bool silent = true;
constexpr bool reported = false;
constexpr char unsupported[] = "critical com.tovra.lumd.binder Unsupported android SDK version!";

// The first two local objects of a process, in the order in which the manager makes them.
constexpr quint32 installObserver = 1;
constexpr quint32 deleteObserver = 2;
constexpr quint32 noObserver = 0;

ParcelWriter &writeObserver(ParcelWriter &writer, quint32 observer)
{
    return observer == noObserver ? writer.nullObject() : writer.localObject(observer);
}

QString packageCall(quint32 code, const ParcelWriter &body)
{
    return callText("package", "android.content.pm.IPackageManager", code, body);
}

QString installCall(quint32 observer)
{
    ParcelWriter writer = body().string16(path);
    return packageCall(60, writeObserver(writer, observer).int32(66).nullString16().int32(0));
}

QString alienInstallCall(quint32 observer)
{
    ParcelWriter writer = body().string16(path);
    return callText(
        "alien", "alien.applications.IAlienService", 2, writeObserver(writer, observer));
}

QString deleteCall(quint32 code, quint32 observer)
{
    ParcelWriter writer = body().string16(app).int32(-1);
    return packageCall(code, writeObserver(writer, observer).int32(0).int32(2));
}

} // namespace

class TestAlienPackageManager : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void installOnSdk26GoesToTheRuntimesOwnService() { installElsewhere(26); }
    void installOnSdk27GoesToThePackageManager();
    void installOnSdk28GoesToTheRuntimesOwnService() { installElsewhere(28); }
    void installOnSdk29GoesToTheRuntimesOwnService() { installElsewhere(29); }
    void installOnSdk30GoesToTheRuntimesOwnService() { installElsewhere(30); }
    void installElsewhereNeedsBothLinks();

    void callsOnSdk26() { callsOn(26, 66, 103, 104); }
    void callsOnSdk27() { callsOn(27, 64, 100, 101); }
    void callsOnSdk28() { callsOn(28, 63, 100, 101); }
    void callsOnSdk29() { callsOn(29, 66, 103, 104); }
    void callsOnSdk30() { callsOn(30, 66, 103, 104); }

    void uidIsTheWordBehindTheException_data();
    void uidIsTheWordBehindTheException();
    void uidHasOneCodeOnEveryLevel();
    void deleteIsTakenUnlessRefused_data();
    void deleteIsTakenUnlessRefused();
    void failuresAreNotNoticed_data();
    void failuresAreNotNoticed();
    void nothingIsSentWithoutALink();
    void callsLeaveNothingBehind();

private:
    /// A manager that finds the runtime already there has no observers.
    std::unique_ptr<AlienPackageManager> connectedManager()
    {
        auto manager = std::make_unique<AlienPackageManager>(nullptr);
        FakeBinder::registerService(package);
        FakeBinder::registerService(alien);
        return m_unit->become(active) && manager->client() ? std::move(manager) : nullptr;
    }

    void installElsewhere(int level)
    {
        QVERIFY(installRuntime(level));
        const std::unique_ptr<AlienPackageManager> manager = connectedManager();
        QVERIFY(manager);
        LogCapture log(LogCapture::Level::Default);
        manager->installPackage(path, reported);
        manager->installPackage(path, silent);
        QCOMPARE(takeCalls(),
            QStringList({alienInstallCall(installObserver), alienInstallCall(noObserver)}));
        QCOMPARE(log.lines(), QStringList());
    }

    void callsOn(int level, quint32 deleteCode, quint32 cacheCode, quint32 dataCode)
    {
        QVERIFY(installRuntime(level));
        const std::unique_ptr<AlienPackageManager> manager = connectedManager();
        QVERIFY(manager);
        const QStringList lines = level < 27 || level > 29 ? texts({unsupported}) : QStringList();
        LogCapture log(LogCapture::Level::Default);

        manager->deletePackage(app, reported);
        QCOMPARE(log.take(), lines);
        QCOMPARE(takeCalls(), QStringList(deleteCall(deleteCode, deleteObserver)));
        manager->deletePackage(app, silent);
        QCOMPARE(log.take(), lines);
        QCOMPARE(takeCalls(), QStringList(deleteCall(deleteCode, noObserver)));
        manager->deleteApplicationCacheFiles(app);
        QCOMPARE(log.take(), lines);
        QCOMPARE(takeCalls(),
            QStringList(packageCall(cacheCode, body().string16(app).int32(0).nullObject())));
        manager->clearApplicationUserData(app);
        QCOMPARE(log.take(), lines);
        QCOMPARE(takeCalls(),
            QStringList(packageCall(dataCode, body().string16(app).nullObject().int32(0))));
    }
};

void TestAlienPackageManager::installOnSdk27GoesToThePackageManager()
{
    QVERIFY(installRuntime(27));
    const std::unique_ptr<AlienPackageManager> manager = connectedManager();
    QVERIFY(manager);
    LogCapture log(LogCapture::Level::Default);
    manager->installPackage(path, reported);
    manager->installPackage(path, silent);
    QCOMPARE(takeCalls(), QStringList({installCall(installObserver), installCall(noObserver)}));
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienPackageManager::installElsewhereNeedsBothLinks()
{
    QVERIFY(installRuntime(29));
    AlienPackageManager manager(nullptr);
    FakeBinder::registerService(alien);
    QVERIFY(m_unit->become(active));
    QVERIFY(AlienServiceMonitor::instance()->client());
    manager.installPackage(path, reported);
    QCOMPARE(takeCalls(), QStringList());

    FakeBinder::killService(alien);
    FakeBinder::registerService(package);
    QTRY_VERIFY(manager.client() && !AlienServiceMonitor::instance()->client());
    manager.installPackage(path, reported);
    QCOMPARE(takeCalls(), QStringList());
}

void TestAlienPackageManager::uidIsTheWordBehindTheException_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<qint32>("uid");
    QTest::newRow("uid") << Reply::data(ParcelWriter().int32(0).int32(10042).bytes()) << 10042;
    QTest::newRow("no such package")
        << Reply::data(ParcelWriter().int32(0).int32(-1).bytes()) << -1;
    QTest::newRow("exception") << Reply::data(ParcelWriter().int32(-1).int32(10042).bytes()) << -1;
    QTest::newRow("positive exception")
        << Reply::data(ParcelWriter().int32(3).int32(10042).bytes()) << -1;
    QTest::newRow("no result") << Reply::data(ParcelWriter().int32(0).bytes()) << -1;
    QTest::newRow("empty") << Reply::data({}) << -1;
    QTest::newRow("failed") << Reply::failure(-32) << -1;
    // What there is of an answer is read.
    QTest::newRow("failed and yet a result")
        << Reply::failureWith(-5, ParcelWriter().int32(0).int32(10042).bytes()) << 10042;
    QTest::newRow("not answered") << Reply::none() << -1;
}

void TestAlienPackageManager::uidIsTheWordBehindTheException()
{
    QFETCH(Reply, reply);
    QFETCH(qint32, uid);
    FakeBinder::registerService(package, [&reply](const FakeBinder::Request &) { return reply; });
    QVERIFY(m_unit->become(active));
    AlienPackageManager manager(nullptr);
    QCOMPARE(manager.packageUid(app, 0x2000), uid);
    QCOMPARE(takeCalls(), QStringList(packageCall(5, body().string16(app).int32(0x2000).int32(0))));
    QVERIFY(m_unit->become(deactivating));
}

void TestAlienPackageManager::uidHasOneCodeOnEveryLevel()
{
    FakeBinder::registerService(package);
    m_unit->startOutAs(active);
    AlienPackageManager manager(nullptr);
    // There is no runtime on disk, so that a look at the level would be said.
    LogCapture log(LogCapture::Level::Default);
    manager.packageUid(app, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls(), QStringList(packageCall(5, body().string16(app).int32(0).int32(0))));
}

void TestAlienPackageManager::deleteIsTakenUnlessRefused_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<bool>("isTaken");
    const QByteArray noException = ParcelWriter().int32(0).bytes();
    QTest::newRow("no exception") << Reply::data(noException) << true;
    QTest::newRow("empty") << Reply::data({}) << true;
    QTest::newRow("exception") << Reply::data(ParcelWriter().int32(-1).bytes()) << false;
    QTest::newRow("positive exception") << Reply::data(ParcelWriter().int32(3).bytes()) << false;
    QTest::newRow("failed") << Reply::failure(-32) << false;
    QTest::newRow("failed and yet no exception") << Reply::failureWith(-5, noException) << false;
    QTest::newRow("not answered") << Reply::none() << false;
}

void TestAlienPackageManager::deleteIsTakenUnlessRefused()
{
    QFETCH(Reply, reply);
    QFETCH(bool, isTaken);
    QVERIFY(installRuntime(27));
    FakeBinder::registerService(package, [&reply](const FakeBinder::Request &) { return reply; });
    QVERIFY(m_unit->become(active));
    AlienPackageManager manager(nullptr);
    QCOMPARE(manager.deletePackage(app, reported), isTaken);
    QVERIFY(m_unit->become(deactivating));
}

void TestAlienPackageManager::failuresAreNotNoticed_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::newRow("failed") << Reply::failure(-32);
    QTest::newRow("not answered") << Reply::none();
    QTest::newRow("exception") << Reply::data(ParcelWriter().int32(-1).bytes());
}

void TestAlienPackageManager::failuresAreNotNoticed()
{
    QFETCH(Reply, reply);
    QVERIFY(installRuntime(27));
    FakeBinder::registerService(package, [&reply](const FakeBinder::Request &) { return reply; });
    QVERIFY(m_unit->become(active));
    AlienPackageManager manager(nullptr);
    LogCapture log;
    manager.installPackage(path, reported);
    manager.deletePackage(app, reported);
    manager.deleteApplicationCacheFiles(app);
    manager.clearApplicationUserData(app);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(takeCalls().size(), 4);
    QVERIFY(m_unit->become(deactivating));
}

void TestAlienPackageManager::nothingIsSentWithoutALink()
{
    FakeBinder::registerService(package);
    FakeBinder::registerService(alien);
    AlienPackageManager manager(nullptr);
    QSignalSpy installed(&manager, &AlienPackageManager::installationResultReceived);
    QSignalSpy uninstalled(&manager, &AlienPackageManager::uninstallationResultReceived);
    LogCapture log;
    manager.installPackage(path, reported);
    QVERIFY(!manager.deletePackage(app, reported));
    manager.deleteApplicationCacheFiles(app);
    manager.clearApplicationUserData(app);
    QCOMPARE(manager.packageUid(app, 0), -1);
    QVERIFY(settle());
    QCOMPARE(takeCalls(), QStringList());
    // Not even a word about the level, which is not known here.
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(installed.size() + uninstalled.size(), 0);
}

void TestAlienPackageManager::callsLeaveNothingBehind()
{
    QVERIFY(installRuntime(27));
    const std::unique_ptr<AlienPackageManager> manager = connectedManager();
    QVERIFY(manager);
    FakeBinder::clearLedger();
    manager->installPackage(path, reported);
    manager->packageUid(app, 0);
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request package", "client_transact_sync_reply package 60",
            "local_request_unref package", "remote_reply_unref package",
            "client_new_request package", "client_transact_sync_reply package 5",
            "local_request_unref package", "remote_reply_unref package"}));
}

LUM_TEST_MAIN(TestAlienPackageManager)
#include "tst_alienpackagemanager.moc"
