// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienpackagemanager.h"

#include "tests/binder/linkstory.h"
#include "tests/clients/clienttest.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <memory>

using FakeBinder::ParcelWriter;

namespace {

const QString package = QStringLiteral("package");
const QString active = QStringLiteral("active");
const QString deactivating = QStringLiteral("deactivating");
const QString installInterface = QStringLiteral("android.content.pm.IPackageInstallObserver2");
const QString app = QStringLiteral("com.foo");
constexpr bool reported = false;

bool reportInstall(quint32 observer)
{
    FakeBinder::Call call;
    call.code = 2;
    call.interface = installInterface;
    call.payload = ParcelWriter().string16(app).int32(1).nullString16().int32(0).bytes();
    return FakeBinder::transactObject(observer, call).delivered;
}

QStringList aboutObservers(const QStringList &ledger)
{
    return ledger.filter(QStringLiteral("local_object"));
}

} // namespace

class TestAlienPackageManagerObservers : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void areMadeOnceTheLinkIsUp();
    void areDroppedWithTheLink();
    void areNewAfterEachReconnect();
    void areMissingUntilTheNextLinkOfARuntimeFoundActive();
    void thatCannotBeMadeAreNull();
    void ofALinkMadeTwiceStillReport();
    void ofALinkMadeTwiceGoAtItsLoss_data();
    void ofALinkMadeTwiceGoAtItsLoss();
    void goWithTheManager();
    void ofOneLossAreDroppedOnce();
};

void TestAlienPackageManagerObservers::init()
{
    QVERIFY(installRuntime(27));
}

void TestAlienPackageManagerObservers::areMadeOnceTheLinkIsUp()
{
    AlienPackageManager manager(nullptr);
    LinkStory story(manager);
    QVERIFY(m_unit->become(active));
    // There is no package manager yet.
    QCOMPARE(aboutObservers(story.take()), QStringList());

    FakeBinder::registerService(package);
    QTRY_VERIFY(manager.client());
    QCOMPARE(aboutObservers(story.take()),
        texts({"servicemanager_new_local_object android.content.pm.IPackageInstallObserver2",
            "servicemanager_new_local_object android.content.pm.IPackageDeleteObserver"}));
}

void TestAlienPackageManagerObservers::areDroppedWithTheLink()
{
    AlienPackageManager manager(nullptr);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(active));
    manager.installPackage(QStringLiteral("/a.apk"), reported);
    const quint32 observer = handedOver();
    QSignalSpy spy(&manager, &AlienPackageManager::installationResultReceived);
    QVERIFY(reportInstall(observer));
    QCOMPARE(spy.size(), 1);
    FakeBinder::clearLedger();

    QVERIFY(m_unit->become(deactivating));

    QCOMPARE(FakeBinder::ledger(),
        texts({"client_unref package",
            "local_object_drop android.content.pm.IPackageInstallObserver2",
            "local_object_drop android.content.pm.IPackageDeleteObserver",
            "remote_object_remove_handler package 2", "remote_object_unref package",
            "servicemanager_unref /dev/puddlejumper"}));
    QVERIFY(!reportInstall(observer));
    QCOMPARE(spy.size(), 1);
}

void TestAlienPackageManagerObservers::areNewAfterEachReconnect()
{
    AlienPackageManager manager(nullptr);
    QSignalSpy links(&manager, &AlienBinderConnection::connectionChanged);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(active));
    manager.installPackage(QStringLiteral("/a.apk"), reported);
    const quint32 before = handedOver();

    FakeBinder::killService(package);
    QTRY_COMPARE(links.size(), 2);
    FakeBinder::registerService(package);
    QTRY_COMPARE(links.size(), 3);
    manager.installPackage(QStringLiteral("/a.apk"), reported);

    QSignalSpy spy(&manager, &AlienPackageManager::installationResultReceived);
    QVERIFY(handedOver() != 0);
    QVERIFY(handedOver() != before);
    QVERIFY(!reportInstall(before));
    QVERIFY(reportInstall(handedOver()));
    QCOMPARE(spy.size(), 1);
}

void TestAlienPackageManagerObservers::areMissingUntilTheNextLinkOfARuntimeFoundActive()
{
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    m_unit->startOutAs(active);
    AlienPackageManager manager(nullptr);
    QVERIFY(manager.client());
    QCOMPARE(aboutObservers(FakeBinder::ledger()), QStringList());
    manager.installPackage(QStringLiteral("/a.apk"), reported);
    manager.deletePackage(app, reported);
    // As if they were silent.
    QCOMPARE(takeCalls(),
        QStringList({callText("package", "android.content.pm.IPackageManager", 60,
                         body()
                             .string16(QStringLiteral("/a.apk"))
                             .nullObject()
                             .int32(66)
                             .nullString16()
                             .int32(0)),
            callText("package", "android.content.pm.IPackageManager", 64,
                body().string16(app).int32(-1).nullObject().int32(0).int32(2))}));

    QSignalSpy links(&manager, &AlienBinderConnection::connectionChanged);
    FakeBinder::killService(package);
    QTRY_COMPARE(links.size(), 1);
    FakeBinder::registerService(package);
    QTRY_COMPARE(links.size(), 2);
    manager.installPackage(QStringLiteral("/a.apk"), reported);
    QVERIFY(reportInstall(handedOver()));
}

void TestAlienPackageManagerObservers::thatCannotBeMadeAreNull()
{
    FakeBinder::failLocalObjects();
    AlienPackageManager manager(nullptr);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(active));
    manager.installPackage(QStringLiteral("/a.apk"), reported);
    QCOMPARE(FakeBinder::requests().size(), 1);
    QCOMPARE(handedOver(), 0U);
}

void TestAlienPackageManagerObservers::ofALinkMadeTwiceStillReport()
{
    auto manager = std::make_unique<AlienPackageManager>(nullptr);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(active));
    manager->installPackage(QStringLiteral("/a.apk"), reported);
    const quint32 first = handedOver();
    QSignalSpy spy(manager.get(), &AlienPackageManager::installationResultReceived);

    // The runtime says "active" once more while the link is up.
    QVERIFY(m_unit->become(QStringLiteral("reloading")));
    QVERIFY(m_unit->become(active));
    manager->installPackage(QStringLiteral("/a.apk"), reported);
    const quint32 second = handedOver();

    QVERIFY(second != first);
    QVERIFY(reportInstall(first));
    QVERIFY(reportInstall(second));
    QCOMPARE(spy.size(), 2);
    manager.reset();
    QVERIFY(!reportInstall(first));
    QVERIFY(!reportInstall(second));
}

void TestAlienPackageManagerObservers::ofALinkMadeTwiceGoAtItsLoss_data()
{
    QTest::addColumn<bool>("dies");
    QTest::addColumn<QStringList>("end");
    QTest::newRow("the runtime goes down")
        << false
        << texts({"remote_object_remove_handler package 4", "remote_object_unref package",
               "remote_object_remove_handler package 2", "remote_object_unref package",
               "servicemanager_unref /dev/puddlejumper"});
    QTest::newRow("the service dies")
        << true
        << texts({"remote_object_remove_handler package 8", "remote_object_unref package",
               "servicemanager_add_registration_handler package 9",
               "servicemanager_get_service_sync package"});
}

void TestAlienPackageManagerObservers::ofALinkMadeTwiceGoAtItsLoss()
{
    QFETCH(bool, dies);
    QFETCH(QStringList, end);
    AlienPackageManager manager(nullptr);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(active));
    manager.installPackage(QStringLiteral("/a.apk"), reported);
    const quint32 first = handedOver();
    QVERIFY(m_unit->become(QStringLiteral("reloading")));
    QVERIFY(m_unit->become(active));
    manager.installPackage(QStringLiteral("/a.apk"), reported);
    FakeBinder::clearLedger();

    if (dies)
        FakeBinder::killService(package, FakeBinder::Notice::Synchronous);
    else
        QVERIFY(m_unit->become(deactivating));

    QStringList lines = texts({"client_unref package"});
    if (!dies)
        lines += lines; // the replaced one goes with the service manager
    lines += texts({"local_object_drop android.content.pm.IPackageInstallObserver2",
        "local_object_drop android.content.pm.IPackageDeleteObserver",
        "local_object_drop android.content.pm.IPackageInstallObserver2",
        "local_object_drop android.content.pm.IPackageDeleteObserver"});
    QCOMPARE(FakeBinder::ledger(), lines + end);
    QVERIFY(!reportInstall(first));
    QVERIFY(!reportInstall(handedOver()));
    QVERIFY(m_unit->become(deactivating));
}

void TestAlienPackageManagerObservers::goWithTheManager()
{
    auto manager = std::make_unique<AlienPackageManager>(nullptr);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(active));
    manager->installPackage(QStringLiteral("/a.apk"), reported);
    FakeBinder::clearLedger();

    manager.reset();

    QStringList drops = aboutObservers(FakeBinder::ledger());
    drops.sort();
    QCOMPARE(drops,
        texts({"local_object_drop android.content.pm.IPackageDeleteObserver",
            "local_object_drop android.content.pm.IPackageInstallObserver2"}));
    QVERIFY(!reportInstall(handedOver()));
}

void TestAlienPackageManagerObservers::ofOneLossAreDroppedOnce()
{
    AlienPackageManager manager(nullptr);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(active));
    FakeBinder::clearLedger();
    FakeBinder::killService(package, FakeBinder::Notice::Synchronous);
    QVERIFY(m_unit->become(deactivating));
    QVERIFY(m_unit->become(QStringLiteral("inactive")));
    QVERIFY(m_unit->become(deactivating));
    QCOMPARE(aboutObservers(FakeBinder::ledger()),
        texts({"local_object_drop android.content.pm.IPackageInstallObserver2",
            "local_object_drop android.content.pm.IPackageDeleteObserver"}));
}

LUM_TEST_MAIN(TestAlienPackageManagerObservers)
#include "tst_alienpackagemanagerobservers.moc"
