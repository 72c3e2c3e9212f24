// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/ownclock.h"

#include "tests/support/leapingclock.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTimer>

#include <unistd.h>

using namespace std::chrono_literals;

class TestOwnClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timeStandsStillUntilItIsMoved();
    void timersFollowIt();
    void timeGoesOnFromWhereItStood();
    void runningClockIsMovedToo();
    void leapingClockPassesAnHourAtOnce();
};

void TestOwnClock::timeStandsStillUntilItIsMoved()
{
    const StoppedClock clock;
    QElapsedTimer timer;
    timer.start();
    usleep(20000);
    QCOMPARE(timer.nsecsElapsed(), 0);
    shiftClock(1500ms);
    QCOMPARE(timer.elapsed(), 1500);
}

void TestOwnClock::timersFollowIt()
{
    const StoppedClock clock;
    int shots = 0;
    QTimer::singleShot(1, Qt::PreciseTimer, this, [&shots] { ++shots; });
    usleep(20000);
    QCoreApplication::processEvents();
    QCOMPARE(shots, 0);
    shiftClock(1ms);
    QCoreApplication::processEvents();
    QCOMPARE(shots, 1);
}

void TestOwnClock::timeGoesOnFromWhereItStood()
{
    QElapsedTimer timer;
    timer.start();
    {
        const StoppedClock clock;
        shiftClock(3600s);
    }
    QVERIFY(timer.elapsed() >= 3600 * 1000);
    timer.restart();
    usleep(2000);
    QVERIFY(timer.elapsed() >= 2);
}

void TestOwnClock::runningClockIsMovedToo()
{
    QElapsedTimer timer;
    timer.start();
    shiftClock(3600s);
    QVERIFY(timer.elapsed() >= 3600 * 1000);
}

void TestOwnClock::leapingClockPassesAnHourAtOnce()
{
    const LeapingClock clock;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QSignalSpy spy(&timer, &QTimer::timeout);
    QElapsedTimer elapsed;
    elapsed.start();
    timer.start(1h);
    QVERIFY(spy.wait(2 * 3600 * 1000));
    QCOMPARE(elapsed.elapsed(), 3600 * 1000);
}

LUM_TEST_MAIN(TestOwnClock)
#include "tst_ownclock.moc"
