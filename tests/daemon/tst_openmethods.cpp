// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/daemon/callas.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

/// What everybody may call: all but the installing and removing of apps.
class TestOpenMethods : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void theRuntimeIsReached_data();
    void theRuntimeIsReached();
    void theSystemIsReached();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestOpenMethods::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    replaceUsersAndGroups();
}

void TestOpenMethods::cleanup()
{
    m_world->renew();
}

void TestOpenMethods::theRuntimeIsReached_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("calls");
    const auto row = [](const char *method, const QStringList &calls,
                         const QStringList &arguments) {
        QTest::newRow(method) << arguments << calls;
    };
    const QStringList package{QStringLiteral("com.a")};
    const QStringList intent{QStringLiteral("a"), QString(), QString(), QString(), QString(),
        QString(), QStringLiteral("{}")};
    const QString window = QStringLiteral("SurfaceFlinger 103");
    row("launchApp", texts({"alien 1"}), package);
    row("launchIntent", texts({"activity 3"}), intent);
    row("openAppSettings", texts({"activity 3"}) + QStringList{window}, package);
    row("viewLicenses", texts({"activity 3"}) + QStringList{window}, {});
    row("forceStopApp", texts({"activity 72"}), package);
    row("deleteAppCacheFiles", texts({"package 100"}), package);
    row("clearAppUserData", texts({"package 101"}), package);
    row("getAppSize", texts({"storagestats 6"}), package);
    row("getAppStartOnBootup", texts({"deviceidle 13"}), package);
    row("setAppStartOnBootup", texts({"deviceidle 13", "deviceidle 1", "deviceidle 13"}),
        package + QStringList{QStringLiteral("true")});
}

void TestOpenMethods::theRuntimeIsReached()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, calls);
    for (const char *other : {"activity", "storagestats", "deviceidle", "SurfaceFlinger"})
        m_world->android->registerService(QString::fromLatin1(other), [](const auto &) {
            return FakeBinder::Reply::data(FakeBinder::ParcelWriter().boolean(true).bytes());
        });
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->waitForLink(QStringLiteral("activity")));
    m_world->android->clearRequests();
    callAs(ordinary(), plain(), QString::fromLatin1(QTest::currentDataTag()), arguments);
    m_world->android->settle();
    QStringList made;
    for (const FakeBinder::Request &request : m_world->android->requests())
        made.append(QStringLiteral("%1 %2").arg(request.service).arg(request.code));
    QCOMPARE(made, calls);
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

void TestOpenMethods::theSystemIsReached()
{
    makeFile(QStringLiteral("/home/.android/data/data/a"), QByteArray(5000, 'x'));
    QVERIFY(m_world->start());
    const auto call = [](const char *method, const QStringList &arguments) {
        return callAs(ordinary(), plain(), QString::fromLatin1(method), arguments);
    };
    QCOMPARE(call("controlService", {QStringLiteral("true")}), QStringLiteral("done"));
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("StartUnit")));
    QCOMPARE(call("controlServiceAutostart", {QStringLiteral("true")}), QStringLiteral("done"));
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("EnableUnitFiles")));
    QVERIFY(call("getAndroidAppDataUsage", {}).toULongLong() >= 5000);
    QCOMPARE(call("notifyRuntimeUpgrade", {QStringLiteral("true")}), QStringLiteral("done"));
    QTRY_COMPARE(
        m_world->daemonLines(), QStringList{QStringLiteral("debug notifyRuntimeUpgrade: true")});
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

LUM_TEST_MAIN(TestOpenMethods)
#include "tst_openmethods.moc"
