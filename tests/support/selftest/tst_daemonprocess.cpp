// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/daemonprocess.h"
#include "tests/support/mocksystemd.h"
#include "tests/support/privatebus.h"
#include "tests/support/remotefakebinder.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <csignal>

class TestDaemonProcess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsUntilItIsKilled();
    void aSignalEndsIt();
    void linesHaveLevelAndCategory();
    void waitingForTheNameEndsWithTheDaemon();
    void anOwnerThatHasGoneIsNotTakenForTheDaemon();
    void runsOnTheFakeLibrary();
};

void TestDaemonProcess::runsUntilItIsKilled()
{
    DaemonProcess daemon;
    daemon.start();
    QVERIFY(daemon.isRunning());
    QVERIFY(!daemon.waitForExit(20));
    daemon.kill();
    QVERIFY(!daemon.isRunning());
    QCOMPARE(daemon.exitCode(), -SIGKILL);
}

void TestDaemonProcess::aSignalEndsIt()
{
    DaemonProcess daemon;
    daemon.start();
    daemon.signal(SIGTERM);
    QVERIFY(daemon.waitForExit());
    QCOMPARE(daemon.exitCode(), -SIGTERM);
}

void TestDaemonProcess::linesHaveLevelAndCategory()
{
    TestNamespace::setActiveSession(1000);
    QVERIFY(QDir().rmdir(QStringLiteral("/run/dbus")));
    DaemonProcess daemon;
    daemon.start();
    QVERIFY(daemon.waitForExit());
    QCOMPARE(daemon.exitCode(), 1);
    QVERIFY(daemon.lines().last().startsWith(
        QStringLiteral("critical com.tovra.lumd.daemon Cannot register")));
    daemon.clearLines();
    QCOMPARE(daemon.lines(), QStringList());
}

void TestDaemonProcess::waitingForTheNameEndsWithTheDaemon()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    DaemonProcess daemon;
    daemon.start();
    daemon.kill();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!daemon.waitForBusName(QStringLiteral("com.tovra.lumd"), 60000));
    QVERIFY(timer.elapsed() < 30000);
}

void TestDaemonProcess::anOwnerThatHasGoneIsNotTakenForTheDaemon()
{
    const QString name = QStringLiteral("com.tovra.lumd");
    const PrivateBus bus(PrivateBus::Kind::System);
    const QDBusConnection own = QDBusConnection::systemBus();
    QDBusConnection other = QDBusConnection::connectToBus(bus.address(), QStringLiteral("other"));
    const QDBusServiceWatcher watcher(name, own);
    QVERIFY(!own.interface()->isServiceRegistered(name));
    QVERIFY(other.registerService(name));
    QVERIFY(other.unregisterService(name));
    QVERIFY(!own.interface()->isServiceRegistered(name));

    DaemonProcess daemon; // without a user on the seat it asks for no name
    daemon.start();
    constexpr int later = 300;
    QTimer::singleShot(later, [&other, &name] { other.registerService(name); });
    QVERIFY(daemon.waitForBusName());
}

void TestDaemonProcess::runsOnTheFakeLibrary()
{
    const PrivateBus system(PrivateBus::Kind::System);
    const PrivateBus user(PrivateBus::Kind::User, 1000);
    MockSystemd systemd;
    systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    TestNamespace::setActiveSession(1000);
    RemoteFakeBinder binder;
    DaemonProcess daemon;
    daemon.setBinderSocket(binder.socketPath());
    daemon.start();
    QVERIFY(daemon.waitForBusName());
    QVERIFY(binder.waitForPublished(QStringLiteral("alien.launcher")));
    binder.quitDaemon();
    QVERIFY(daemon.waitForExit());
    QCOMPARE(daemon.exitCode(), 0);
}

LUM_TEST_MAIN(TestDaemonProcess)
#include "tst_daemonprocess.moc"
