// SPDX-License-Identifier: BSD-3-Clause
// A system bus that goes, and comes anew, while lumctl waits.
#include "tests/companions/lumctlrun.h"
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <csignal>

namespace {

const QString apk = QStringLiteral("/run/apps/a.apk");

} // namespace

class TestLumctlBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void waitForAResultEnds();
    void waitForTheRuntimeEnds();
    void waitForAnAnswerEnds();
    void busThatHangsIsGivenUpInTime();
    void followerGoesOnWithTheNextBus();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestLumctlBus::initTestCase()
{
    AppFixture::installCatalogues();
    m_world = std::make_unique<AppFixture>();
    makeFile(apk);
    QVERIFY(m_world->start());
}

void TestLumctlBus::waitForAResultEnds()
{
    QVERIFY(m_world->bringUpRuntime());
    LumctlRun run({QStringLiteral("install"), apk, apk});
    run.start();
    QVERIFY(m_world->android->waitForRequest(QStringLiteral("package"), installCode));
    // lumctl's answer has left the bus when that of a second call behind it has come.
    for (int i = 0; i < 2; ++i)
        QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("isRunning"))), QString());
    QVERIFY(run.process().isRunning());
    m_world->systemBus.stop();
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines(),
        QStringList({QStringLiteral("lumctl: /run/apps/a.apk: lumd has gone before it told the "
                                    "result; if the request was kept for the runtime, it is lost"),
            QStringLiteral("lumctl: /run/apps/a.apk: not asked for any more")}));
    QCOMPARE(run.exitCode(), 3);
}

void TestLumctlBus::waitForTheRuntimeEnds()
{
    m_world->systemd.setFollowsRequests(false);
    LumctlRun run(words("runtime start"));
    run.start();
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("StartUnit")));
    QVERIFY(run.process().isRunning());
    m_world->systemBus.stop();
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines(), QStringList{QStringLiteral("lumctl: lumd is not running")});
    QCOMPARE(run.exitCode(), 3);
}

void TestLumctlBus::waitForAnAnswerEnds()
{
    const auto connections = [] {
        return QDBusConnection::systemBus().interface()->registeredServiceNames().value().size();
    };
    m_world->daemon->signal(SIGSTOP);
    const int before = connections();
    LumctlRun run(words("runtime status"));
    run.start();
    QTRY_VERIFY_WITH_TIMEOUT(connections() > before, 10000);
    m_world->systemBus.stop();
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines(), QStringList{QStringLiteral("lumctl: lumd is not running")});
    QCOMPARE(run.exitCode(), 3);
}

void TestLumctlBus::busThatHangsIsGivenUpInTime()
{
    m_world->systemBus.signal(SIGSTOP);
    const QStringList lines = lumctl(words("status --timeout 2"));
    m_world->systemBus.signal(SIGCONT);
    QCOMPARE(lines,
        QStringList({QStringLiteral("lumctl: lumd does not answer within the time limit"),
            QStringLiteral("exit 5")}));
}

void TestLumctlBus::followerGoesOnWithTheNextBus()
{
    LumctlRun run(words("monitor --json"));
    run.start();
    const QString state = QStringLiteral("{\"event\":\"StateChanged\"");
    QVERIFY(run.process().waitForLineThatBegins(state));
    m_world->systemBus.stop();
    QVERIFY(run.process().waitForLine(QStringLiteral("{\"event\":\"DaemonVanished\"}")));
    m_world->daemon->kill();
    const PrivateBus next(PrivateBus::Kind::System);
    DaemonProcess daemon;
    daemon.setBinderSocket(m_world->android->socketPath());
    daemon.start();
    QVERIFY(run.process().waitForLine(QStringLiteral("{\"event\":\"DaemonAppeared\"}")));
    QTRY_COMPARE_WITH_TIMEOUT(run.process().lines().filter(state).size(), 2, 10000);
    run.process().signal(SIGINT);
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), -SIGINT);
}

LUM_TEST_MAIN(TestLumctlBus)
#include "tst_lumctlbus.moc"
