// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/daemon/callas.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

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
    QTest::addColumn<QString>("service");
    const auto row = [](const char *method, const char *service, const QStringList &arguments) {
        QTest::newRow(method) << arguments << QString::fromLatin1(service);
    };
    const QStringList package{QStringLiteral("com.a")};
    row("launchApp", "alien", package);
    row("openAppSettings", "activity", package);
    row("viewLicenses", "activity", {});
    row("forceStopApp", "activity", package);
    row("deleteAppCacheFiles", "package", package);
    row("clearAppUserData", "package", package);
    row("getAppSize", "storagestats", package);
    row("getAppStartOnBootup", "deviceidle", package);
    row("setAppStartOnBootup", "deviceidle", package + QStringList{QStringLiteral("true")});
}

void TestOpenMethods::theRuntimeIsReached()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, service);
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
    QStringList asked;
    for (const FakeBinder::Request &request : m_world->android->requests())
        asked.append(request.service);
    QVERIFY2(asked.contains(service), qPrintable(asked.join(QLatin1Char(' '))));
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
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

LUM_TEST_MAIN(TestOpenMethods)
#include "tst_openmethods.moc"
