// SPDX-License-Identifier: BSD-3-Clause
#include "tests/companions/lumctlrun.h"
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"

#include <csignal>

class TestLumctlRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void runtimeIsStartedAndStopped();
    void runtimeThatFailsToStartIsTold();
    void startOfTheRuntimeOnBootIsChanged();
    void monitorPrintsALineForEachEvent();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestLumctlRuntime::initTestCase()
{
    AppFixture::installCatalogues();
    m_world = std::make_unique<AppFixture>();
}

void TestLumctlRuntime::init()
{
    QVERIFY(m_world->start());
}

void TestLumctlRuntime::cleanup()
{
    m_world->renew();
}

void TestLumctlRuntime::runtimeIsStartedAndStopped()
{
    m_world->systemd.setFollowsRequests(true);
    QCOMPARE(lumctl(words("runtime start")),
        QStringList({QStringLiteral("The Android runtime is active"), QStringLiteral("exit 0")}));
    QCOMPARE(lumctl(words("runtime start --json")),
        QStringList({QStringLiteral("{\"runtimeState\":\"active\"}"), QStringLiteral("exit 0")}));
    QCOMPARE(lumctl(words("runtime stop")),
        QStringList({QStringLiteral("The Android runtime is inactive"), QStringLiteral("exit 0")}));
    m_world->systemd.setFollowsRequests(false);
    QCOMPARE(lumctl(words("runtime start --timeout 8")),
        QStringList({QStringLiteral("lumctl: The Android runtime is still inactive"),
            QStringLiteral("exit 5")}));
    QCOMPARE(lumctl(words("runtime start --no-wait")),
        QStringList({QStringLiteral("Starting the Android runtime"), QStringLiteral("exit 0")}));
}

void TestLumctlRuntime::runtimeThatFailsToStartIsTold()
{
    LumctlRun run(words("runtime start"));
    run.start();
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("StartUnit")));
    m_world->systemd.setUnitState(QStringLiteral("activating"), QStringLiteral("start"));
    m_world->systemd.setUnitState(QStringLiteral("failed"), QStringLiteral("failed"));
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines(), QStringList{QStringLiteral("lumctl: The Android runtime is failed")});
    QCOMPARE(run.exitCode(), 1);
}

void TestLumctlRuntime::startOfTheRuntimeOnBootIsChanged()
{
    QCOMPARE(lumctl(words("runtime enable")),
        QStringList(
            {QStringLiteral("The Android runtime starts on boot"), QStringLiteral("exit 0")}));
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("EnableUnitFiles")));
    QCOMPARE(lumctl(words("runtime disable --json")),
        QStringList({QStringLiteral("{\"startOnBoot\":false}"), QStringLiteral("exit 0")}));
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(lumctl(words("runtime status")),
        QStringList({QStringLiteral("Android runtime:  inactive"),
            QStringLiteral("Start on boot:    off"), QStringLiteral("exit 0")}));
}

void TestLumctlRuntime::monitorPrintsALineForEachEvent()
{
    QVERIFY(m_world->see(QStringLiteral("activating")));
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->android->waitForPublished(QStringLiteral("alien.launcher")));
    LumctlRun run(words("monitor --json"));
    run.start();
    QVERIFY(run.process().waitForLineThatBegins(QStringLiteral("{\"event\":\"StateChanged\"")));
    FakeBinder::Call call;
    call.code = launcherAdded;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    Launcher launcher = mapLauncher();
    launcher.caption = QStringLiteral("M\u202e");
    call.payload = launcher.payload();
    QVERIFY(m_world->android->transact(QStringLiteral("alien.launcher"), call).delivered);
    QVERIFY(run.process().waitForLine(
        QStringLiteral("{\"desktopFile\":\"%1\",\"event\":\"LauncherChanged\",\"icon\":\"%2\","
                       "\"name\":\"M\\u202e\",\"package\":\"com.a_b.map\"}")
            .arg(launcher.entryPath(), launcher.iconPath())));
    m_world->daemon->kill();
    QVERIFY(run.process().waitForLine(QStringLiteral("{\"event\":\"DaemonVanished\"}")));
    m_world->renew();
    QVERIFY(m_world->start());
    QVERIFY(run.process().waitForLine(QStringLiteral("{\"event\":\"DaemonAppeared\"}")));
    run.process().signal(SIGINT);
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), -SIGINT);
}

LUM_TEST_MAIN(TestLumctlRuntime)
#include "tst_lumctlruntime.moc"
