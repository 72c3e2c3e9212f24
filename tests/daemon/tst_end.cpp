// SPDX-License-Identifier: BSD-3-Clause
// How the daemon ends: for want of something at its start, by a signal, or with its event loop.
#include "tests/daemon/daemonfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"
#include "tests/support/text.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <csignal>

class TestEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingBusEndsTheProcess();
    void secondInstanceEndsAndTheFirstStays();
    void loopWithoutGlibEndsTheProcess();
    void signalEndsTheRunningDaemon();
    void endOfTheEventLoopEndsTheProcess();
    void codeOfTheEventLoopIsThatOfTheProcess();
    void everythingIsDestroyedAtTheEndOfTheEventLoop();
};

void TestEnd::missingBusEndsTheProcess()
{
    TestNamespace::setActiveSession(1000);
    const QString stale = QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk");
    makeFile(stale);
    DaemonProcess daemon;
    daemon.setLoggingRules(QString());
    daemon.start();
    QVERIFY(daemon.waitForExit());
    QCOMPARE(daemon.exitCode(), 1);
    QVERIFY(!QFile::exists(stale));
    QCOMPARE(daemon.lines().last(),
        QStringLiteral("critical com.tovra.lumd.daemon Cannot register object at  "
                       "/com/tovra/lumd"));
}

void TestEnd::secondInstanceEndsAndTheFirstStays()
{
    DaemonFixture world;
    QVERIFY(world.start());
    const QString owner =
        QDBusConnection::systemBus().interface()->serviceOwner(QStringLiteral("com.tovra.lumd"));
    const QString staged = QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk");
    makeFile(staged);

    DaemonProcess second;
    // It ends as it stands: a connection that is destroyed would tell.
    second.setLoggingRules(
        QStringLiteral("com.tovra.lumd.daemon=true\ncom.tovra.lumd.binder=true"));
    second.start();
    QVERIFY(second.waitForExit());
    QCOMPARE(second.exitCode(), 1);
    QCOMPARE(second.lines(),
        QStringList(
            {QStringLiteral("debug com.tovra.lumd.daemon Removing old incoming file: \"%1\"")
                    .arg(staged),
                QStringLiteral("critical com.tovra.lumd.daemon Cannot register D-Bus service at "
                               "com.tovra.lumd")}));
    QVERIFY(!QFile::exists(staged));

    QVERIFY(world.daemon->isRunning());
    QCOMPARE(QDBusConnection::systemBus()
                 .interface()
                 ->serviceOwner(QStringLiteral("com.tovra.lumd"))
                 .value(),
        owner);
}

void TestEnd::loopWithoutGlibEndsTheProcess()
{
    DaemonFixture world;
    const QString stale = QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk");
    makeFile(stale);
    world.daemon->setEnvironment(QStringLiteral("QT_NO_GLIB"), QStringLiteral("1"));
    world.daemon->start();
    QVERIFY(world.daemon->waitForExit());
    QCOMPARE(world.daemon->exitCode(), 1);
    QCOMPARE(world.daemon->lines(),
        QStringList{QStringLiteral("critical com.tovra.lumd.daemon The event loop does not serve "
                                   "glib, exiting.")});
    // It has asked for nothing and touched nothing.
    QCOMPARE(world.systemd.callTexts(), QStringList());
    QVERIFY(QFile::exists(stale));
}

void TestEnd::signalEndsTheRunningDaemon()
{
    DaemonFixture world;
    QVERIFY(world.start());
    world.daemon->signal(SIGTERM);
    QVERIFY(world.daemon->waitForExit());
    QCOMPARE(world.daemon->exitCode(), -SIGTERM);
}

void TestEnd::endOfTheEventLoopEndsTheProcess()
{
    DaemonFixture world;
    world.systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    world.daemon->setLoggingRules(QString());
    QVERIFY(world.start());
    QVERIFY(world.android->waitForPublished(QStringLiteral("alien.launcher")));
    world.android->quitDaemon();
    QVERIFY(world.daemon->waitForExit());
    QCOMPARE(world.daemon->exitCode(), 0);
    QCOMPARE(world.daemon->lines(), QStringList());
    QTRY_VERIFY(!isOnBus(QStringLiteral("com.tovra.lumd")));
}

void TestEnd::codeOfTheEventLoopIsThatOfTheProcess()
{
    DaemonFixture world;
    world.systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    QVERIFY(world.start());
    world.android->quitDaemon(7);
    QVERIFY(world.daemon->waitForExit());
    QCOMPARE(world.daemon->exitCode(), 7);
}

void TestEnd::everythingIsDestroyedAtTheEndOfTheEventLoop()
{
    DaemonFixture world;
    world.systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    QVERIFY(world.start());
    world.daemon->clearLines();
    world.android->quitDaemon();
    QVERIFY(world.daemon->waitForExit());
    QCOMPARE(world.daemon->lines(),
        texts({"debug com.tovra.lumd.binder Destroying deviceidle connection",
            "debug com.tovra.lumd.binder Destroying alarm connection",
            "debug com.tovra.lumd.binder Destroying storagestats connection",
            "debug com.tovra.lumd.binder Destroying activity connection",
            "debug com.tovra.lumd.binder Destroying package connection"}));
}

LUM_TEST_MAIN(TestEnd)
#include "tst_end.moc"
