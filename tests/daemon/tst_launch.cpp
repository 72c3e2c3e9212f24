// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <QDir>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;

namespace {

const QString monitor = QStringLiteral("alien");
const QString packageManager = QStringLiteral("package");
const QString activity = QStringLiteral("activity");
const QString settingsPackage = QStringLiteral("com.android.settings");
const QString clockPackage = QStringLiteral("com.clock");

QString launchApp(const QString &package)
{
    return errorOf(DaemonFixture::call(QStringLiteral("launchApp"), {package}));
}

QVariantList intent(const QString &action, const QString &package = {})
{
    const QString none;
    return {action, none, none, package, none, none, QVariantMap()};
}

QString launchIntent(const QString &action)
{
    return errorOf(DaemonFixture::call(QStringLiteral("launchIntent"), intent(action)));
}

QString waiting(const QString &app)
{
    return remark(Remark::Notice, QStringLiteral("Starting Android App Support to open ") + app);
}

QString launchedFromTheQueue(const QString &package, int left)
{
    return QStringLiteral("debug Launching  \"%1\"  ( %2  more in queue)").arg(package).arg(left);
}

QStringList actions(const QVector<Request> &requests)
{
    QStringList actions;
    for (const Request &request : requests) {
        ParcelReader reader(request.payload);
        reader.object();
        reader.string16();
        reader.int32();
        actions.append(reader.string16());
    }
    return actions;
}

void makeEntry(const QString &package, const QString &name)
{
    makeFile(QStringLiteral("/usr/share/applications/lumd_launcher_%1.desktop").arg(package),
        QStringLiteral("[Desktop Entry]\nName=%1\nX-lumd-packageName=%2\n")
            .arg(name, package)
            .toUtf8());
}

} // namespace

class TestLaunch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void runningRuntimeLaunchesAtOnce();
    void launchesThatWaitAreMadeInOrderOnce();
    void launchThatFailsIsGivenUp();
    void launchesWaitOnWhenThePackageManagerComesLater();
    void launchAfterTheRuntimeWentAwayWaits();
    void waitingRequestsEndWithTheDaemon();
    void everyMethodStartsTheRuntimeOnlyWhenItIsDown_data();
    void everyMethodStartsTheRuntimeOnlyWhenItIsDown();
    void userIsToldWhichAppWaits_data();
    void userIsToldWhichAppWaits();
    void intentsThatWaitAreStartedInOrder();
    void launchesAndIntentsWaitForDifferentServices();

private:
    bool bringUp(const QStringList &services);

    std::unique_ptr<AppFixture> m_world;
};

void TestLaunch::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    makeFile(QStringLiteral("/usr/share/translations/lumd_eng_en.qm"),
        fileContents(QStringLiteral(CATALOGUES "/lumd_eng_en.qm")));
}

void TestLaunch::init()
{
    QVERIFY(QDir(QStringLiteral("/usr/share/applications")).removeRecursively());
    m_world->android->registerService(QStringLiteral("SurfaceFlinger"),
        [](const Request &) { return Reply::data(ParcelWriter().boolean(true).bytes()); });
}

void TestLaunch::cleanup()
{
    m_world->renew();
}

bool TestLaunch::bringUp(const QStringList &services)
{
    for (const QString &service : services) {
        if (!m_world->bringUp(service))
            return false;
    }
    return true;
}

void TestLaunch::runningRuntimeLaunchesAtOnce()
{
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    // The package manager has no part in it.
    QVERIFY(bringUp({monitor}));
    const QStringList packages{QStringLiteral("com.a"), QStringLiteral("com.a"), QString()};
    for (const QString &package : packages)
        QCOMPARE(launchApp(package), QString());
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug Launching \"com.a\""),
            QStringLiteral("debug Launching \"com.a\""), QStringLiteral("debug Launching \"\"")}));
    const auto requests = m_world->requests(monitor, launchCode);
    QCOMPARE(names(requests), packages);
    QCOMPARE(requests.first().payload,
        ParcelWriter(ParcelWriter::Style::Gbinder).string16(packages.first()).bytes());
    QCOMPARE(m_world->starts(), 0);
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

void TestLaunch::launchesThatWaitAreMadeInOrderOnce()
{
    const QString twice = QStringLiteral("com.b");
    const QStringList packages{twice, QStringLiteral("com.a"), twice, twice};
    QVERIFY(m_world->start());
    QStringList words;
    QStringList notices;
    for (const QString &package : packages) {
        QCOMPARE(launchApp(package), QString());
        words.append(QStringLiteral("debug Starting Alien to launch \"%1\"").arg(package));
        notices.append(waiting(package));
    }
    QTRY_COMPARE(m_world->notifications.texts(), notices);

    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(bringUp({packageManager, monitor}));
    for (int i = 0; i < packages.size(); ++i)
        words.append(launchedFromTheQueue(packages.at(i), packages.size() - 1 - i));
    QTRY_COMPARE(m_world->daemonLines(), words);
    QCOMPARE(names(m_world->requests(monitor, launchCode)), packages);

    m_world->android->killService(monitor);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder alien died! Trying to reconnect.")));
    m_world->daemon->clearLines();
    QVERIFY(bringUp({monitor}));
    QCOMPARE(names(m_world->requests(monitor, launchCode)), packages);
    QCOMPARE(m_world->notifications.texts(), notices);
}

void TestLaunch::launchThatFailsIsGivenUp()
{
    QVERIFY(m_world->start());
    const QStringList packages{QStringLiteral("com.a"), QStringLiteral("com.b")};
    for (const QString &package : packages)
        QCOMPARE(launchApp(package), QString());
    m_world->android->registerService(packageManager);
    m_world->android->registerService(monitor, [](const Request &) { return Reply::failure(-1); });
    QVERIFY(m_world->connectToRuntime());
    QTRY_COMPARE(m_world->daemonLines().mid(2),
        QStringList(
            {launchedFromTheQueue(packages.first(), 1), launchedFromTheQueue(packages.last(), 0)}));
    QCOMPARE(names(m_world->requests(monitor, launchCode)), packages);

    m_world->android->killService(monitor);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder alien died! Trying to reconnect.")));
    m_world->daemon->clearLines();
    QVERIFY(bringUp({monitor}));
    QCOMPARE(names(m_world->requests(monitor, launchCode)), packages);
}

void TestLaunch::launchesWaitOnWhenThePackageManagerComesLater()
{
    QVERIFY(m_world->start());
    const QString package = QStringLiteral("com.a");
    QCOMPARE(launchApp(package), QString());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(bringUp({monitor, packageManager}));
    QCOMPARE(m_world->requests(monitor, launchCode).size(), 0);
    // A later launch does not take the earlier one along.
    QCOMPARE(launchApp(QStringLiteral("com.b")), QString());
    QCOMPARE(names(m_world->requests(monitor, launchCode)), QStringList{QStringLiteral("com.b")});

    m_world->android->killService(monitor);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder alien died! Trying to reconnect.")));
    m_world->daemon->clearLines();
    QVERIFY(bringUp({monitor}));
    QTRY_COMPARE(m_world->daemonLines(), QStringList{launchedFromTheQueue(package, 0)});
    QCOMPARE(names(m_world->requests(monitor, launchCode)),
        QStringList({QStringLiteral("com.b"), package}));
}

void TestLaunch::launchAfterTheRuntimeWentAwayWaits()
{
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->see(QStringLiteral("deactivating")));
    const QString package = QStringLiteral("com.a");
    QCOMPARE(launchApp(package), QString());
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{waiting(package)});
    QCOMPARE(m_world->requests(monitor, launchCode).size(), 0);
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("StartUnit")));
    for (const char *state : {"inactive", "activating"})
        QVERIFY(m_world->see(QString::fromLatin1(state)));
    m_world->daemon->clearLines();
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->android->waitForRequest(monitor, launchCode));
    QCOMPARE(names(m_world->requests(monitor, launchCode)), QStringList{package});
}

void TestLaunch::waitingRequestsEndWithTheDaemon()
{
    QVERIFY(m_world->start());
    QCOMPARE(launchApp(QStringLiteral("com.a")), QString());
    QCOMPARE(launchIntent(QStringLiteral("a")), QString());
    m_world->renew();
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(bringUp({activity}));
    QCOMPARE(m_world->requests(monitor, launchCode).size(), 0);
    QCOMPARE(m_world->requests(activity, startActivityCode).size(), 0);
}

void TestLaunch::everyMethodStartsTheRuntimeOnlyWhenItIsDown_data()
{
    addStatesAndStarts();
}

void TestLaunch::everyMethodStartsTheRuntimeOnlyWhenItIsDown()
{
    QFETCH(QString, state);
    QFETCH(int, starts);
    m_world->systemd.setUnitStateSilently(state, QStringLiteral("test"));
    QVERIFY(m_world->start());
    const QVector<QPair<QString, QVariantList>> methods{
        {QStringLiteral("launchApp"), {QStringLiteral("com.a")}},
        {QStringLiteral("launchIntent"), intent(QStringLiteral("a"))},
        {QStringLiteral("openAppSettings"), {QStringLiteral("com.a")}},
        {QStringLiteral("viewLicenses"), {}}};
    for (const auto &[method, arguments] : methods) {
        m_world->systemd.clearCalls();
        QCOMPARE(errorOf(DaemonFixture::call(method, arguments)), QString());
        // What was sent before this has arrived when it has.
        DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
        QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
        QCOMPARE(m_world->starts(), starts);
    }
}

void TestLaunch::userIsToldWhichAppWaits_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<bool>("hasEntries");
    QTest::addColumn<QString>("name");

    const QString action = QStringLiteral("a");
    const auto row = [](const char *title, const char *method, const QVariantList &arguments,
                         bool hasEntries, const QString &name) {
        QTest::newRow(title) << QString::fromLatin1(method) << arguments << hasEntries << name;
    };
    row("app", "launchApp", {clockPackage}, true, QStringLiteral("Clock"));
    row("app without an entry", "launchApp", {clockPackage}, false, clockPackage);
    row("intent", "launchIntent", intent(action, clockPackage), true, QStringLiteral("Clock"));
    row("intent, app without an entry", "launchIntent", intent(action, clockPackage), false,
        clockPackage);
    row("intent for any app", "launchIntent", intent(action), true, QString());
    row("app settings", "openAppSettings", {clockPackage}, true, QStringLiteral("Settings"));
    row("app settings without an entry", "openAppSettings", {clockPackage}, false, settingsPackage);
    row("licenses", "viewLicenses", {}, true, QStringLiteral("Settings"));
    row("licenses without an entry", "viewLicenses", {}, false, settingsPackage);
}

void TestLaunch::userIsToldWhichAppWaits()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(bool, hasEntries);
    QFETCH(QString, name);
    if (hasEntries) {
        makeEntry(clockPackage, QStringLiteral("Clock"));
        makeEntry(settingsPackage, QStringLiteral("Settings"));
    }
    QVERIFY(m_world->start());
    QCOMPARE(errorOf(DaemonFixture::call(method, arguments)), QString());
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{waiting(name)});
}

void TestLaunch::intentsThatWaitAreStartedInOrder()
{
    QVERIFY(m_world->start());
    const QString repeated = QStringLiteral("b");
    for (const QString &action : {repeated, QStringLiteral("a"), repeated})
        QCOMPARE(launchIntent(action), QString());
    QCOMPARE(
        errorOf(DaemonFixture::call(QStringLiteral("openAppSettings"), {clockPackage})), QString());
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("viewLicenses"))), QString());
    QTRY_COMPARE(m_world->notifications.notices().size(), 5);
    m_world->daemon->clearLines();

    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(bringUp({activity}));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug Launching  \"b\" \"\""),
            QStringLiteral("debug Launching  \"a\" \"\""),
            QStringLiteral("debug Launching  \"b\" \"\""),
            QStringLiteral("debug Launching  \"android.settings.APPLICATION_DETAILS_SETTINGS\" "
                           "\"com.android.settings\""),
            QStringLiteral("debug Launching  \"android.settings.LEGAL_INFO\" "
                           "\"com.android.settings\"")}));
    const QStringList expected{repeated, QStringLiteral("a"), repeated,
        QStringLiteral("android.settings.APPLICATION_DETAILS_SETTINGS"),
        QStringLiteral("android.settings.LEGAL_INFO")};
    QCOMPARE(actions(m_world->requests(activity, startActivityCode)), expected);

    // A connect that finds nothing waiting starts nothing.
    m_world->android->killService(activity);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder activity died! Trying to reconnect.")));
    m_world->daemon->clearLines();
    QVERIFY(bringUp({activity}));
    QCOMPARE(actions(m_world->requests(activity, startActivityCode)), expected);
}

void TestLaunch::launchesAndIntentsWaitForDifferentServices()
{
    QVERIFY(m_world->start());
    QCOMPARE(launchApp(QStringLiteral("com.a")), QString());
    QCOMPARE(launchIntent(QStringLiteral("a")), QString());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(bringUp({activity}));
    QCOMPARE(m_world->requests(activity, startActivityCode).size(), 1);
    QCOMPARE(m_world->requests(monitor, launchCode).size(), 0);
    QVERIFY(bringUp({packageManager, monitor}));
    QCOMPARE(m_world->requests(monitor, launchCode).size(), 1);
    QCOMPARE(m_world->requests(activity, startActivityCode).size(), 1);
}

LUM_TEST_MAIN(TestLaunch)
#include "tst_launch.moc"
