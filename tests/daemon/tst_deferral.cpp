// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>

namespace {

const QString packageService = QStringLiteral("package");
const QString monitorService = QStringLiteral("alien");

QString source(const QString &name)
{
    return QStringLiteral("/run/apps/") + name;
}

bool request(const char *method, const QString &argument)
{
    return resultOf(DaemonFixture::call(QString::fromLatin1(method), {argument}))
        == QLatin1String("true");
}

QDBusMessage removal(const QString &package)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"),
        QStringLiteral("removeFile"));
    message.setArguments({package});
    return message;
}

} // namespace

class TestDeferral : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void whicheverServiceComesLastReleasesTheRequests_data();
    void whicheverServiceComesLastReleasesTheRequests();
    void oneServiceIsNotEnough_data();
    void oneServiceIsNotEnough();
    void firstOfSeveralForANameWins_data();
    void firstOfSeveralForANameWins();
    void namesAreForgottenBetweenReplays();
    void requestsAreReplayedOnce();
    void lostConnectionKeepsTheRequests();
    void packageManagerDoesNotReleaseLaunches();
    void monitorReleasesLaunchesBeforeRequests();
    void tenThousandRequestsAreReplayedOnceEach();

private:
    QStringList releases() const;

    std::unique_ptr<AppFixture> m_world;
};

void TestDeferral::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    for (const char *name : {"a.apk", "b.apk"})
        makeFile(source(QString::fromLatin1(name)));
}

void TestDeferral::init()
{
    QVERIFY(QDir(QStringLiteral("/home/.android")).removeRecursively());
}

void TestDeferral::cleanup()
{
    m_world->renew();
}

/// What the daemon says of requests that it passes on.
QStringList TestDeferral::releases() const
{
    QStringList found;
    const QStringList lines = m_world->daemonLines();
    for (const QString &line : lines) {
        for (const char *words : {"debug Installing", "debug Uninstalling", "debug Launching"}) {
            if (line.startsWith(QLatin1String(words)))
                found.append(line);
        }
    }
    return found;
}

void TestDeferral::whicheverServiceComesLastReleasesTheRequests_data()
{
    QTest::addColumn<QStringList>("order");
    QTest::newRow("package manager last") << QStringList({monitorService, packageService});
    QTest::newRow("monitor last") << QStringList({packageService, monitorService});
}

void TestDeferral::whicheverServiceComesLastReleasesTheRequests()
{
    QFETCH(QStringList, order);
    QVERIFY(m_world->start());
    QVERIFY(request("installFile", source(QStringLiteral("b.apk"))));
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    QVERIFY(request("installFile", source(QStringLiteral("a.apk"))));
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(order.first()));
    QCOMPARE(releases(), QStringList());
    QVERIFY(m_world->bringUp(order.last()));
    QTRY_COMPARE(releases(),
        QStringList({QStringLiteral("debug Installing \"/data/aas-staging/app/incoming/b.apk\""),
            QStringLiteral("debug Uninstalling \"com.foo\""),
            QStringLiteral("debug Installing \"/data/aas-staging/app/incoming/a.apk\"")}));
    QVERIFY(m_world->android->waitForRequest(packageService, installCode, 2));
    const auto installs = m_world->requests(packageService, installCode);
    QCOMPARE(installs.size(), 2);
    for (const auto &install : installs)
        QCOMPARE(install.localObjects.size(), 1);
    const auto removals = m_world->requests(packageService, uninstallCode);
    QCOMPARE(removals.size(), 1);
    QCOMPARE(removals.first().payload, uninstallBody(QStringLiteral("com.foo")));
}

void TestDeferral::oneServiceIsNotEnough_data()
{
    QTest::addColumn<QString>("service");
    QTest::newRow("package manager") << packageService;
    QTest::newRow("monitor") << monitorService;
}

void TestDeferral::oneServiceIsNotEnough()
{
    QFETCH(QString, service);
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(service));
    QVERIFY(request("installFile", source(QStringLiteral("a.apk"))));
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    QTRY_COMPARE(m_world->daemonLines().filter(QStringLiteral("not running")).size(), 2);
    QCOMPARE(releases(), QStringList());
}

void TestDeferral::firstOfSeveralForANameWins_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("observers");
    QTest::newRow("silent first") << QByteArray("installPreloadFile") << QByteArray("installFile")
                                  << 0;
    QTest::newRow("silent second")
        << QByteArray("installFile") << QByteArray("installPreloadFile") << 1;
}

void TestDeferral::firstOfSeveralForANameWins()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, observers);
    QVERIFY(m_world->start());
    const QString path = source(QStringLiteral("a.apk"));
    QVERIFY(request(first.constData(), path));
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    QVERIFY(request(second.constData(), path));
    QVERIFY(request("removeFile", QStringLiteral("com.Foo")));
    QVERIFY(request("removeFile", QStringLiteral("/a/com.foo-2.apk")));
    QVERIFY(m_world->bringUpRuntime());
    QTRY_COMPARE(releases(),
        QStringList({QStringLiteral("debug Installing \"/data/aas-staging/app/incoming/a.apk\""),
            QStringLiteral("debug Uninstalling \"com.foo\""),
            QStringLiteral("debug Uninstalling \"com.Foo\"")}));
    const auto requests = m_world->requests(packageService, installCode);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().localObjects.size(), observers);
}

void TestDeferral::namesAreForgottenBetweenReplays()
{
    QVERIFY(m_world->start());
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->android->waitForRequest(packageService, uninstallCode));
    m_world->android->killService(monitorService);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder alien died! Trying to reconnect.")));
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    m_world->android->registerService(monitorService);
    QVERIFY(m_world->android->waitForRequest(packageService, uninstallCode, 2));
}

void TestDeferral::requestsAreReplayedOnce()
{
    QVERIFY(m_world->start());
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    // The package manager refuses it: it does not come back on the list for that.
    m_world->android->registerService(
        packageService, [](const FakeBinder::Request &) { return FakeBinder::Reply::failure(-1); });
    m_world->android->registerService(monitorService);
    QVERIFY(m_world->connectToRuntime());
    QVERIFY(m_world->android->waitForRequest(packageService, uninstallCode));
    m_world->daemon->clearLines();
    m_world->android->killService(packageService);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder package died! Trying to reconnect.")));
    QVERIFY(m_world->bringUp(packageService));
    QCOMPARE(m_world->requests(packageService, uninstallCode).size(), 1);
}

void TestDeferral::lostConnectionKeepsTheRequests()
{
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(packageService));
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    QVERIFY(m_world->see(QStringLiteral("deactivating")));
    QVERIFY(m_world->see(QStringLiteral("inactive")));
    QCOMPARE(releases(), QStringList());
    m_world->daemon->clearLines();
    QVERIFY(m_world->bringUpRuntime());
    QTRY_COMPARE(releases(), QStringList{QStringLiteral("debug Uninstalling \"com.foo\"")});
}

void TestDeferral::packageManagerDoesNotReleaseLaunches()
{
    QVERIFY(m_world->start());
    DaemonFixture::call(QStringLiteral("launchApp"), {QStringLiteral("com.bar")});
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(monitorService));
    QVERIFY(m_world->bringUp(packageService));
    QTRY_COMPARE(releases(), QStringList{QStringLiteral("debug Uninstalling \"com.foo\"")});
    QCOMPARE(m_world->requests(monitorService, launchCode).size(), 0);

    // They wait for the monitor's next connect.
    m_world->daemon->clearLines();
    m_world->android->killService(monitorService);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder alien died! Trying to reconnect.")));
    QVERIFY(m_world->bringUp(monitorService));
    QTRY_COMPARE(releases(),
        QStringList{QStringLiteral("debug Launching  \"com.bar\"  ( 0  more in queue)")});
    QCOMPARE(names(m_world->requests(monitorService, launchCode)),
        QStringList{QStringLiteral("com.bar")});
}

void TestDeferral::monitorReleasesLaunchesBeforeRequests()
{
    QVERIFY(m_world->start());
    QVERIFY(request("removeFile", QStringLiteral("com.foo")));
    DaemonFixture::call(QStringLiteral("launchApp"), {QStringLiteral("com.bar")});
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(packageService));
    QVERIFY(m_world->bringUp(monitorService));
    QTRY_COMPARE(releases(),
        QStringList({QStringLiteral("debug Launching  \"com.bar\"  ( 0  more in queue)"),
            QStringLiteral("debug Uninstalling \"com.foo\"")}));
}

void TestDeferral::tenThousandRequestsAreReplayedOnceEach()
{
    constexpr int count = 10000;
    constexpr int batch = 100;
    m_world->daemon->setLoggingRules(
        QStringLiteral("com.tovra.lumd.service=true\ncom.tovra.lumd.binder=true"));
    QVERIFY(m_world->start());
    QStringList packages;
    for (int first = 0; first < count; first += batch) {
        // Most callers wait for no answer, which would take half of the test's time.
        for (int i = first; i < first + batch - 1; ++i) {
            packages.append(QStringLiteral("com.foo%1").arg(i));
            QVERIFY(QDBusConnection::systemBus().send(removal(packages.last())));
        }
        packages.append(QStringLiteral("com.foo%1").arg(first + batch - 1));
        const QDBusMessage reply = QDBusConnection::systemBus().call(removal(packages.last()));
        QCOMPARE(resultOf(reply), QStringLiteral("true"));
    }
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->android->waitForRequest(packageService, uninstallCode, count));
    QCOMPARE(names(m_world->requests(packageService, uninstallCode)), packages);
}

LUM_TEST_MAIN(TestDeferral)
#include "tst_deferral.moc"
