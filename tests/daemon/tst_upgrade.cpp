// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/daemon/homescreen.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDir>

namespace {

const QString applications = QStringLiteral("/usr/share/applications/");

/// Calls the method, while the event loop turns; gives the error's words, or nothing.
QString notify(bool isUpgrading)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"),
        QStringLiteral("notifyRuntimeUpgrade"));
    message << isUpgrading;
    const QDBusPendingCall call = QDBusConnection::systemBus().asyncCall(message);
    if (!QTest::qWaitFor([&call] { return call.isFinished(); }, 20000))
        return QStringLiteral("no reply");
    return errorOf(call.reply());
}

} // namespace

class TestUpgrade : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void homeScreenIsToldOfEachLauncher();
    void nameStopsAtTheFirstDot();
    void noLauncherMeansNoCall();
    void refusalEndsNothing();
    void absentHomeScreenIsSurvived();
    void busIsThatOfTheUserOnTheSeat();
    void runtimeIsNotStarted();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestUpgrade::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestUpgrade::init()
{
    const QStringList names = QDir(applications).entryList(QDir::Files);
    for (const QString &name : names)
        QVERIFY(QFile::remove(applications + name));
}

void TestUpgrade::cleanup()
{
    m_world->renew();
}

void TestUpgrade::homeScreenIsToldOfEachLauncher()
{
    // By package, and for one package by file.
    const QString z = QStringLiteral("lumd_launcher_z-z");
    const QString y = QStringLiteral("lumd_launcher_y-y");
    const QString x = QStringLiteral("lumd_launcher_x-x");
    const QString zPath = makeEntry(z, "com.a");
    const QString yPath = makeEntry(y, "com.b");
    const QString xPath = makeEntry(x, "com.b");
    makeEntry(QStringLiteral("other_x-x"), "com.b");
    const HomeScreen homeScreen(m_world->userBus.address());
    QVERIFY(m_world->start());

    QCOMPARE(notify(true), QString());
    const QStringList begin{started(z, zPath), started(x, xPath), started(y, yPath)};
    QCOMPARE(homeScreen.calls(), begin);
    QCOMPARE(notify(false), QString());
    QCOMPARE(homeScreen.calls(), begin + QStringList({finished(z), finished(x), finished(y)}));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug notifyRuntimeUpgrade: true"),
            QStringLiteral("debug notifyRuntimeUpgrade: false")}));
}

void TestUpgrade::nameStopsAtTheFirstDot()
{
    const QString path = makeEntry(QStringLiteral("lumd_launcher_a.b"), "a.b");
    const HomeScreen homeScreen(m_world->userBus.address());
    QVERIFY(m_world->start());
    QCOMPARE(notify(true), QString());
    QCOMPARE(notify(false), QString());
    const QString name = QStringLiteral("lumd_launcher_a");
    QCOMPARE(homeScreen.calls(), QStringList({started(name, path), finished(name)}));
}

void TestUpgrade::noLauncherMeansNoCall()
{
    const HomeScreen homeScreen(m_world->userBus.address());
    QVERIFY(m_world->start());
    QCOMPARE(notify(true), QString());
    QCOMPARE(homeScreen.calls(), QStringList());
}

void TestUpgrade::refusalEndsNothing()
{
    const QString a = QStringLiteral("lumd_launcher_a-a");
    const QString b = QStringLiteral("lumd_launcher_b-b");
    const QString aPath = makeEntry(a, "a");
    const QString bPath = makeEntry(b, "b");
    const HomeScreen homeScreen(m_world->userBus.address(), HomeScreen::Manner::Refuses);
    QVERIFY(m_world->start());
    QCOMPARE(notify(true), QString());
    QCOMPARE(homeScreen.calls(), QStringList({started(a, aPath), started(b, bPath)}));
}

void TestUpgrade::absentHomeScreenIsSurvived()
{
    const QString name = QStringLiteral("lumd_launcher_a-a");
    const QString path = makeEntry(name, "a");
    QVERIFY(m_world->start());
    QCOMPARE(notify(true), QString());
    QTRY_COMPARE(
        m_world->daemonLines(), QStringList{QStringLiteral("debug notifyRuntimeUpgrade: true")});
    // One that has come meanwhile is found.
    const HomeScreen homeScreen(m_world->userBus.address());
    QCOMPARE(notify(true), QString());
    QCOMPARE(homeScreen.calls(), QStringList{started(name, path)});
}

void TestUpgrade::busIsThatOfTheUserOnTheSeat()
{
    const QString name = QStringLiteral("lumd_launcher_a-a");
    const QString path = makeEntry(name, "a");
    const PrivateBus otherBus(PrivateBus::Kind::User, 1001);
    const HomeScreen homeScreen(m_world->userBus.address());
    const HomeScreen otherScreen(otherBus.address());
    m_world->daemon->setEnvironment(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), otherBus.address());
    QVERIFY(m_world->start());
    QCOMPARE(notify(true), QString());
    QCOMPARE(homeScreen.calls(), QStringList{started(name, path)});
    QCOMPARE(otherScreen.calls(), QStringList());
}

void TestUpgrade::runtimeIsNotStarted()
{
    makeEntry(QStringLiteral("lumd_launcher_a-a"), "a");
    QVERIFY(m_world->start());
    m_world->systemd.clearCalls();
    QCOMPARE(notify(true), QString());
    QCOMPARE(notify(false), QString());
    // What was sent before this has arrived when it has.
    DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(m_world->starts(), 0);
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

LUM_TEST_MAIN(TestUpgrade)
#include "tst_upgrade.moc"
