// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/shiftedclock.h"
#include "tests/support/testmain.h"

#include <optional>

using namespace std::chrono_literals;

namespace {

const QString warning =
    QStringLiteral("warning Alien Dalvik has been up for a minute, and its services are not found: "
                   "is /etc/gbinder.d/lumd.conf there, and set for its Android release?");

} // namespace

/// The daemon beside a runtime that is up, and of which nothing is found.
class TestSilentRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void minuteOfSilenceIsWarnedOfOnce();
    void runtimeThatIsUpAtTheStartCounts();
    void serviceThatIsFoundInTimeIsEnough();
    void serviceThatIsLostIsGivenAMinuteToo();
    void eachStartIsGivenItsMinute();

private:
    bool start();
    /// Kills the service, and waits until the daemon has heard of it.
    bool losePackageService();
    /// Lets the time pass for the daemon, and gives its warnings so far.
    QStringList warningsAfter(std::chrono::seconds time);

    std::unique_ptr<AppFixture> m_world;
    std::optional<ShiftedClock> m_clock;
};

void TestSilentRuntime::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestSilentRuntime::cleanup()
{
    m_world->renew();
    m_clock.reset();
}

bool TestSilentRuntime::start()
{
    m_clock.emplace();
    m_clock->giveTo(*m_world->daemon);
    return m_world->start();
}

bool TestSilentRuntime::losePackageService()
{
    m_world->android->killService(QStringLiteral("package"));
    return m_world->daemon->waitForLine(
               QStringLiteral("warning com.tovra.lumd.binder package died! Trying to reconnect."))
        && DaemonFixture::settle();
}

QStringList TestSilentRuntime::warningsAfter(std::chrono::seconds time)
{
    m_clock->forward(time);
    // Behind the second the daemon has been through its timers once. One of a minute may be three
    // seconds late or early.
    for (int i = 0; i < 2; ++i)
        if (!DaemonFixture::settle())
            return {QStringLiteral("the daemon does not answer")};
    return m_world->daemonLines().filter(QRegularExpression(QStringLiteral("^warning")));
}

void TestSilentRuntime::minuteOfSilenceIsWarnedOfOnce()
{
    QVERIFY(start());
    QCOMPARE(warningsAfter(2min), QStringList());
    QVERIFY(m_world->see(QStringLiteral("activating")));
    QCOMPARE(warningsAfter(2min), QStringList());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QCOMPARE(warningsAfter(55s), QStringList());
    QCOMPARE(warningsAfter(15s), QStringList{warning});
    QCOMPARE(warningsAfter(10min), QStringList{warning});
    QVERIFY(m_world->bringUp(QStringLiteral("package")));
    QVERIFY(losePackageService());
    QCOMPARE(warningsAfter(10min), QStringList{warning});
}

void TestSilentRuntime::runtimeThatIsUpAtTheStartCounts()
{
    m_world->systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    QVERIFY(start());
    QCOMPARE(warningsAfter(55s), QStringList());
    QCOMPARE(warningsAfter(15s), QStringList{warning});
}

void TestSilentRuntime::serviceThatIsFoundInTimeIsEnough()
{
    QVERIFY(start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QCOMPARE(warningsAfter(55s), QStringList());
    QVERIFY(m_world->bringUp(QStringLiteral("package")));
    QCOMPARE(warningsAfter(10min), QStringList());
}

void TestSilentRuntime::serviceThatIsLostIsGivenAMinuteToo()
{
    QVERIFY(start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(QStringLiteral("package")));
    QVERIFY(losePackageService());
    QCOMPARE(warningsAfter(55s), QStringList());
    QCOMPARE(warningsAfter(15s), QStringList{warning});
}

void TestSilentRuntime::eachStartIsGivenItsMinute()
{
    QVERIFY(start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QCOMPARE(warningsAfter(50s), QStringList());
    QVERIFY(m_world->see(QStringLiteral("deactivating")));
    QVERIFY(m_world->see(QStringLiteral("active")));
    QCOMPARE(warningsAfter(50s), QStringList());
    QCOMPARE(warningsAfter(15s), QStringList{warning});
    QVERIFY(m_world->see(QStringLiteral("failed")));
    QVERIFY(m_world->see(QStringLiteral("active")));
    QCOMPARE(warningsAfter(65s), QStringList({warning, warning}));
}

LUM_TEST_MAIN(TestSilentRuntime)
#include "tst_silentruntime.moc"
