// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/stoppedclock.h"

#include "tests/support/testmain.h"

#include <QElapsedTimer>
#include <QTimer>

#include <unistd.h>

using namespace std::chrono_literals;

class TestStoppedClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timeStandsStillUntilItIsMoved();
    void timersFollowIt();
    void timeGoesOnFromWhereItStood();
};

void TestStoppedClock::timeStandsStillUntilItIsMoved()
{
    StoppedClock clock;
    QElapsedTimer timer;
    timer.start();
    usleep(20000);
    QCOMPARE(timer.nsecsElapsed(), 0);
    clock.advance(1500ms);
    QCOMPARE(timer.elapsed(), 1500);
}

void TestStoppedClock::timersFollowIt()
{
    StoppedClock clock;
    int shots = 0;
    QTimer::singleShot(1, Qt::PreciseTimer, this, [&shots] { ++shots; });
    usleep(20000);
    QCoreApplication::processEvents();
    QCOMPARE(shots, 0);
    clock.advance(1ms);
    QCoreApplication::processEvents();
    QCOMPARE(shots, 1);
}

void TestStoppedClock::timeGoesOnFromWhereItStood()
{
    QElapsedTimer timer;
    timer.start();
    {
        StoppedClock clock;
        clock.advance(100s);
    }
    QVERIFY(timer.elapsed() >= 100 * 1000);
    timer.restart();
    usleep(2000);
    QVERIFY(timer.elapsed() >= 2);
}

LUM_TEST_MAIN(TestStoppedClock)
#include "tst_stoppedclock.moc"
