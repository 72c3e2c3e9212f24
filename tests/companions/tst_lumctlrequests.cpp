// SPDX-License-Identifier: BSD-3-Clause
#include "tests/companions/lumctlrun.h"
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/intenttest.h"
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/testmain.h"

#include <QDir>

#include <atomic>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;

namespace {

// On Android level 27.
constexpr quint32 deleteCacheCode = 100;
constexpr quint32 clearDataCode = 101;
constexpr quint32 forceStopCode = 72;
constexpr quint32 isAllowedCode = 13;

const QString activity = QStringLiteral("activity");
const QString package = QStringLiteral("package");

} // namespace

class TestLumctlRequests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void appIsLaunched();
    void launcherAmongOthersIsLaunchedByItsName();
    void launchThatIsKeptSaysSo();
    void urlsAndFilesAreOpened_data();
    void urlsAndFilesAreOpened();
    void nothingThereIsNotOpened();
    void intentGoesOutWithAllItsFields();
    void settingsAndLicencesAreOpened();
    void requestsOfAnAppReachAndroid_data();
    void requestsOfAnAppReachAndroid();
    void runtimeThatIsDownIsTold_data();
    void runtimeThatIsDownIsTold();
    void dataIsClearedAfterAYes_data();
    void dataIsClearedAfterAYes();
    void startOnBootIsLookedAtAgain_data();
    void startOnBootIsLookedAtAgain();

private:
    /// Has the daemon know these launchers, with the runtime up.
    bool serve(const QVector<Launcher> &launchers);
    /// The bodies of the activities that were started.
    QVector<QByteArray> bodies();

    std::unique_ptr<AppFixture> m_world;
};

void TestLumctlRequests::initTestCase()
{
    AppFixture::installCatalogues();
    m_world = std::make_unique<AppFixture>();
}

void TestLumctlRequests::init()
{
    m_world->android->registerService(QStringLiteral("SurfaceFlinger"),
        [](const auto &) { return Reply::data(ParcelWriter().boolean(true).bytes()); });
    QVERIFY(m_world->start());
}

void TestLumctlRequests::cleanup()
{
    m_world->renew();
}

bool TestLumctlRequests::serve(const QVector<Launcher> &launchers)
{
    m_world->android->registerService(activity);
    if (!m_world->see(QStringLiteral("activating")) || !m_world->bringUpRuntime()
        || !m_world->waitForLink(activity)
        || !m_world->android->waitForPublished(QStringLiteral("alien.launcher")))
        return false;
    for (const Launcher &launcher : launchers) {
        FakeBinder::Call call;
        call.code = launcherAdded;
        call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
        call.payload = launcher.payload();
        if (!m_world->android->transact(QStringLiteral("alien.launcher"), call).delivered)
            return false;
    }
    return true;
}

QVector<QByteArray> TestLumctlRequests::bodies()
{
    QVector<QByteArray> found;
    for (const FakeBinder::Request &request : m_world->requests(activity, startActivityCode))
        found.append(request.payload);
    return found;
}

void TestLumctlRequests::appIsLaunched()
{
    QVERIFY(serve({mapLauncher()}));
    QCOMPARE(lumctl(words("launch Map")),
        QStringList({QStringLiteral("Starting Map"), QStringLiteral("exit 0")}));
    const auto requests = m_world->requests(QStringLiteral("alien"), launchCode);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(names(requests), QStringList{QStringLiteral("com.a_b.map")});
}

void TestLumctlRequests::launcherAmongOthersIsLaunchedByItsName()
{
    QVERIFY(serve({clockLauncher(), alarmLauncher()}));
    QCOMPARE(lumctl(words("launch alarm")),
        QStringList({QStringLiteral("Starting Alarm"), QStringLiteral("exit 0")}));
    Intent intent;
    intent.action = QStringLiteral("android.intent.action.MAIN");
    intent.flags = 0x10004000;
    intent.package = alarmLauncher().packageName;
    intent.className = alarmLauncher().className;
    intent.categories = QStringList{QStringLiteral("android.intent.category.LAUNCHER")};
    QCOMPARE(bodies(), QVector<QByteArray>{startActivityBody(intent)});
}

void TestLumctlRequests::launchThatIsKeptSaysSo()
{
    QCOMPARE(lumctl(words("launch --exact com.a")),
        QStringList({QStringLiteral("Starting com.a, when the Android runtime is up"),
            QStringLiteral("exit 0")}));
    QCOMPARE(lumctl(words("open http://a.example/ --json")),
        QStringList({QStringLiteral("{\"request\":\"http://a.example/\",\"result\":\"queued\"}"),
            QStringLiteral("exit 0")}));
    QCOMPARE(lumctl(words("settings --exact com.a")),
        QStringList(
            {QStringLiteral("Opening the settings of com.a, when the Android runtime is up"),
                QStringLiteral("exit 0")}));
    QCOMPARE(lumctl(words("licences")),
        QStringList({QStringLiteral("Opening Android's legal information, when the Android runtime "
                                    "is up"),
            QStringLiteral("exit 0")}));
}

void TestLumctlRequests::urlsAndFilesAreOpened_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<IntentCall>("call");
    IntentCall call;
    call.data = QStringLiteral("market://details?id=com.a");
    QTest::newRow("URL") << words("open market://details?id=com.a") << call;
    call.package = QStringLiteral("com.a_b.map");
    QTest::newRow("URL in an app") << words("open --package map market://details?id=com.a") << call;
    call = {};
    call.data = QStringLiteral("/run/apps/page.html");
    call.type = QStringLiteral("text/html");
    QTest::newRow("file") << words("open /run/apps/page.html") << call;
    QTest::newRow("file as a URL") << words("open file:///run/apps/page.html") << call;
    call.data = QStringLiteral("/run/apps/b:\u00fc.png");
    call.type = QStringLiteral("image/png");
    QTest::newRow("file with a colon") << words("open /run/apps/../apps/b:\u00fc.png") << call;
    QTest::newRow("file that reads as a URL") << words("open b:\u00fc.png") << call;
}

void TestLumctlRequests::urlsAndFilesAreOpened()
{
    QFETCH(QStringList, arguments);
    QFETCH(IntentCall, call);
    makeFile(QStringLiteral("/run/apps/page.html"));
    makeFile(QStringLiteral("/run/apps/b:\u00fc.png"));
    QVERIFY(QDir::setCurrent(QStringLiteral("/run/apps")));
    QVERIFY(serve({mapLauncher()}));
    QCOMPARE(lumctl(arguments).last(), QStringLiteral("exit 0"));
    const QVector<QByteArray> opened = bodies();
    QCOMPARE(opened.size(), 1);
    m_world->android->clearRequests();
    QCOMPARE(launch(call), QString());
    QCOMPARE(opened, bodies());
}

void TestLumctlRequests::nothingThereIsNotOpened()
{
    for (const char *line :
        {"open /run/none.pdf", "open none.pdf", "open /run", "open file:///none"})
        QCOMPARE(lumctl(words(line)),
            QStringList(
                {QStringLiteral("lumctl: %1: neither a URL nor a file").arg(words(line).last()),
                    QStringLiteral("exit 1")}));
}

void TestLumctlRequests::intentGoesOutWithAllItsFields()
{
    QVERIFY(serve({}));
    QCOMPARE(lumctl(words("intent --action com.a.DO --data http://a/ --type text/x --package com.a "
                          "--class com.a.B --category com.a.C --extra bool:b=true "
                          "--extra int:i=-2147483648 --extra long:l=9223372036854775807 "
                          "--extra double:d=0.5 --extra string:s:t=a=b")),
        QStringList({QStringLiteral("Starting com.a.DO"), QStringLiteral("exit 0")}));
    const QVector<QByteArray> sent = bodies();
    QCOMPARE(sent.size(), 1);
    m_world->android->clearRequests();
    IntentCall call;
    call.action = QStringLiteral("com.a.DO");
    call.data = QStringLiteral("http://a/");
    call.type = QStringLiteral("text/x");
    call.package = QStringLiteral("com.a");
    call.className = QStringLiteral("com.a.B");
    call.category = QStringLiteral("com.a.C");
    call.extras = {{QStringLiteral("b"), true}, {QStringLiteral("i"), -2147483647 - 1},
        {QStringLiteral("l"), 9223372036854775807LL}, {QStringLiteral("d"), 0.5},
        {QStringLiteral("s:t"), QStringLiteral("a=b")}};
    QCOMPARE(launch(call), QString());
    QCOMPARE(sent, bodies());
}

void TestLumctlRequests::settingsAndLicencesAreOpened()
{
    QVERIFY(serve({mapLauncher()}));
    QCOMPARE(lumctl(words("settings map")),
        QStringList({QStringLiteral("Opening the settings of Map"), QStringLiteral("exit 0")}));
    QCOMPARE(lumctl(words("licences")),
        QStringList(
            {QStringLiteral("Opening Android's legal information"), QStringLiteral("exit 0")}));
    QCOMPARE(bodies().size(), 2);
}

void TestLumctlRequests::requestsOfAnAppReachAndroid_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("service");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("stop") << QStringLiteral("stop") << activity << forceStopCode
                          << QStringLiteral("Map: asked Android to stop it");
    QTest::newRow("cache") << QStringLiteral("clear-cache") << package << deleteCacheCode
                           << QStringLiteral("Map: asked Android to clear the cache");
    QTest::newRow("data") << QStringLiteral("clear-data --yes") << package << clearDataCode
                          << QStringLiteral("Map: asked Android to clear all data");
}

void TestLumctlRequests::requestsOfAnAppReachAndroid()
{
    QFETCH(QString, command);
    QFETCH(QString, service);
    QFETCH(quint32, code);
    QFETCH(QString, text);
    QVERIFY(serve({mapLauncher()}));
    QCOMPARE(lumctl(words(qPrintable(command + QStringLiteral(" map")))),
        QStringList({text, QStringLiteral("exit 0")}));
    const auto requests = m_world->requests(service, code);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(ParcelReader(requests.first().payload).string16(), QStringLiteral("com.a_b.map"));
}

void TestLumctlRequests::runtimeThatIsDownIsTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char *line : {"stop --exact a", "clear-cache --exact a",
             "clear-data --yes --exact a", "autostart --exact a on"})
        QTest::newRow(line) << words(line);
}

void TestLumctlRequests::runtimeThatIsDownIsTold()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(lumctl(arguments),
        QStringList({QStringLiteral("lumctl: The Android runtime is not running; \u201clumctl "
                                    "runtime start\u201d starts it"),
            QStringLiteral("exit 1")}));
}

void TestLumctlRequests::dataIsClearedAfterAYes_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<int>("requests");
    QTest::newRow("yes") << QStringLiteral("yes") << 1;
    QTest::newRow("Y") << QStringLiteral("Y") << 1;
    QTest::newRow("no") << QStringLiteral("no") << 0;
    QTest::newRow("nothing") << QString() << 0;
}

void TestLumctlRequests::dataIsClearedAfterAYes()
{
    QFETCH(QString, answer);
    QFETCH(int, requests);
    QVERIFY(serve({mapLauncher()}));
    makeFile(QStringLiteral("/run/answer"), answer.toUtf8() + '\n');
    ChildProcess process;
    process.start(QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"),
            QStringLiteral("script --quiet --return --command '%1 clear-data map' /dev/null "
                           "< /run/answer")
                .arg(QStringLiteral(LUMCTL_PROGRAM))},
        {{QStringLiteral("PATH"), QStringLiteral("/usr/bin:/bin")},
            {QStringLiteral("TERM"), QStringLiteral("xterm")},
            {QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8")}},
        ChildProcess::Collect::Both);
    QVERIFY(process.waitForExit());
    const QString all = process.lines().join(QLatin1Char('\n'));
    QVERIFY2(all.contains(QStringLiteral("Clear all data of Map (com.a_b.map)? [y/N] ")),
        qPrintable(all));
    QCOMPARE(process.exitCode(), requests == 1 ? 0 : 1);
    QCOMPARE(m_world->requests(package, clearDataCode).size(), requests);
}

void TestLumctlRequests::startOnBootIsLookedAtAgain_data()
{
    QTest::addColumn<bool>("obeys");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("obeyed") << true
                            << QStringList({QStringLiteral("Map: starts on boot"),
                                   QStringLiteral("exit 0")});
    QTest::newRow("ignored") << false
                             << QStringList({QStringLiteral("lumctl: Map: Android did not change "
                                                            "the start on boot"),
                                    QStringLiteral("exit 1")});
}

void TestLumctlRequests::startOnBootIsLookedAtAgain()
{
    QFETCH(bool, obeys);
    QFETCH(QStringList, lines);
    const auto isAllowed = std::make_shared<std::atomic_bool>(false);
    m_world->android->registerService(
        QStringLiteral("deviceidle"), [obeys, isAllowed](const FakeBinder::Request &request) {
            if (request.code == isAllowedCode)
                return Reply::data(
                    ParcelWriter().int32(0).int32(isAllowed->load() ? 1 : 0).bytes());
            *isAllowed = obeys;
            return Reply::data(ParcelWriter().int32(0).bytes());
        });
    QVERIFY(serve({mapLauncher()}));
    QCOMPARE(lumctl(words("autostart map on")), lines);
}

LUM_TEST_MAIN(TestLumctlRequests)
#include "tst_lumctlrequests.moc"
