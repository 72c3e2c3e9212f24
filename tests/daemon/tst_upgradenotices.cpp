// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/daemon/homescreen.h"
#include "tests/support/shiftedclock.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusPendingCall>

#include <csignal>

using namespace std::chrono_literals;

namespace {

const QString a = QStringLiteral("lumd_launcher_a-a");
const QString b = QStringLiteral("lumd_launcher_b-b");

/// Calls the method without waiting for the answer.
QDBusPendingCall notify(bool isUpgrading)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"),
        QStringLiteral("notifyRuntimeUpgrade"));
    message << isUpgrading;
    return QDBusConnection::systemBus().asyncCall(message);
}

QString debugLine(bool isUpgrading)
{
    return isUpgrading ? QStringLiteral("debug notifyRuntimeUpgrade: true")
                       : QStringLiteral("debug notifyRuntimeUpgrade: false");
}

} // namespace

class TestUpgradeNotices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void homeScreenThatDoesNotAnswerHoldsNobody();
    void homeScreenIsGivenTwentyFiveSecondsForEachLauncher();
    void secondCallWaitsForTheFirst();
    void callWithoutReplyIsCarriedOutToo();
    void busThatHangsEndsTheList();
    void absentBusCostsNothing();

private:
    std::unique_ptr<AppFixture> m_world;
    QString m_aPath;
    QString m_bPath;
};

void TestUpgradeNotices::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    m_aPath = makeEntry(a, "a");
    m_bPath = makeEntry(b, "b");
}

void TestUpgradeNotices::cleanup()
{
    m_world->renew();
}

void TestUpgradeNotices::homeScreenThatDoesNotAnswerHoldsNobody()
{
    HomeScreen homeScreen(m_world->userBus.address(), HomeScreen::Manner::Waits);
    QVERIFY(m_world->start());
    const QDBusPendingCall call = notify(true);
    QTRY_COMPARE(homeScreen.calls(), QStringList{started(a, m_aPath)});
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("isRunning"))), QString());
    QVERIFY(DaemonFixture::settle());
    // Each launcher after the answer to the one before, and the caller last.
    QCOMPARE(homeScreen.calls().size(), 1);
    homeScreen.answer();
    QTRY_COMPARE(homeScreen.calls(), QStringList({started(a, m_aPath), started(b, m_bPath)}));
    QVERIFY(DaemonFixture::settle());
    QVERIFY(!call.isFinished());
    homeScreen.answer();
    QTRY_VERIFY(call.isFinished());
    QCOMPARE(errorOf(call.reply()), QString());
    QCOMPARE(call.reply().signature(), QString());
}

void TestUpgradeNotices::homeScreenIsGivenTwentyFiveSecondsForEachLauncher()
{
    ShiftedClock clock;
    clock.giveTo(*m_world->daemon);
    const HomeScreen homeScreen(m_world->userBus.address(), HomeScreen::Manner::Waits);
    QVERIFY(m_world->start());
    const QDBusPendingCall call = notify(true);
    QTRY_COMPARE(homeScreen.calls().size(), 1);
    clock.forward(24s);
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(homeScreen.calls().size(), 1);
    clock.forward(1s);
    QVERIFY(DaemonFixture::settle());
    QTRY_COMPARE(homeScreen.calls(), QStringList({started(a, m_aPath), started(b, m_bPath)}));
    QVERIFY(!call.isFinished());
    clock.forward(25s);
    QVERIFY(DaemonFixture::settle());
    QTRY_VERIFY(call.isFinished());
    QCOMPARE(errorOf(call.reply()), QString());
    QTRY_COMPARE(m_world->daemonLines(), QStringList{debugLine(true)});
}

void TestUpgradeNotices::secondCallWaitsForTheFirst()
{
    HomeScreen homeScreen(m_world->userBus.address(), HomeScreen::Manner::Waits);
    QVERIFY(m_world->start());
    const QDBusPendingCall first = notify(true);
    const QDBusPendingCall second = notify(false);
    QTRY_COMPARE(homeScreen.calls().size(), 1);
    QVERIFY(DaemonFixture::settle());
    QTRY_COMPARE(m_world->daemonLines(), QStringList{debugLine(true)});
    // What there is when its turn comes is told of, and only that.
    QVERIFY(QFile::remove(m_bPath));
    homeScreen.answer();
    QTRY_COMPARE(homeScreen.calls().size(), 2);
    QVERIFY(!first.isFinished());
    homeScreen.answer();
    QTRY_VERIFY(first.isFinished());
    QTRY_COMPARE(homeScreen.calls().size(), 3);
    QVERIFY(!second.isFinished());
    homeScreen.answer();
    QTRY_VERIFY(second.isFinished());
    QCOMPARE(
        homeScreen.calls(), QStringList({started(a, m_aPath), started(b, m_bPath), finished(a)}));
    QTRY_COMPARE(m_world->daemonLines(), QStringList({debugLine(true), debugLine(false)}));
}

void TestUpgradeNotices::callWithoutReplyIsCarriedOutToo()
{
    const HomeScreen homeScreen(m_world->userBus.address());
    QVERIFY(m_world->start());
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"),
        QStringLiteral("notifyRuntimeUpgrade"));
    message << false;
    QVERIFY(QDBusConnection::systemBus().send(message)); // marks it as one without reply
    QTRY_COMPARE(homeScreen.calls(), QStringList({finished(a), finished(b)}));
}

void TestUpgradeNotices::busThatHangsEndsTheList()
{
    ShiftedClock clock;
    clock.giveTo(*m_world->daemon);
    const HomeScreen homeScreen(m_world->userBus.address());
    QVERIFY(m_world->start());
    m_world->userBus.signal(SIGSTOP);
    const QDBusPendingCall call = notify(true);
    QVERIFY(DaemonFixture::settle());
    clock.forward(9s);
    QVERIFY(DaemonFixture::settle());
    QVERIFY(!call.isFinished());
    clock.forward(1s);
    QVERIFY(DaemonFixture::settle());
    QTRY_VERIFY(call.isFinished());
    QCOMPARE(errorOf(call.reply()), QString());
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({debugLine(true),
            QStringLiteral("warning User's bus not reached in 10 s, dropping message: "
                           "org.teskmobile.glossbar.LauncherModel.updatingStarted")}));
    // The next call finds it again.
    m_world->userBus.signal(SIGCONT);
    const QDBusPendingCall next = notify(false);
    QTRY_VERIFY(next.isFinished());
    QCOMPARE(homeScreen.calls(), QStringList({finished(a), finished(b)}));
}

void TestUpgradeNotices::absentBusCostsNothing()
{
    QVERIFY(m_world->start());
    m_world->userBus.stop();
    QCOMPARE(
        errorOf(DaemonFixture::call(QStringLiteral("notifyRuntimeUpgrade"), {true})), QString());
    QTRY_COMPARE(m_world->daemonLines(), QStringList{debugLine(true)});
}

LUM_TEST_MAIN(TestUpgradeNotices)
#include "tst_upgradenotices.moc"
