// SPDX-License-Identifier: BSD-3-Clause
#include "services/heldcalls.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QtTest>

class TestHeldCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsHeldAtFirst();
    void hangingCallWaitsForItsRelease();
    void slowCallIsFinishedAfterItsDelay();
    void releaseFinishesASlowCallOnce();
    void callThatComesDuringAReleaseIsNotHeld();
};

void TestHeldCalls::nothingIsHeldAtFirst()
{
    const HeldCalls held;
    QVERIFY(!held.holding());
}

void TestHeldCalls::hangingCallWaitsForItsRelease()
{
    HeldCalls held;
    QStringList finished;
    held.hold(std::nullopt);
    QVERIFY(held.holding());
    held.add([&finished] { finished.append(QStringLiteral("first")); });
    held.add([&finished] { finished.append(QStringLiteral("second")); });
    bool later = false;
    QTimer::singleShot(20, &held, [&later] { later = true; });
    QTRY_VERIFY(later);
    QCOMPARE(held.count(), 2);
    QCOMPARE(finished, QStringList());
    held.release();
    QCOMPARE(finished, (QStringList{QStringLiteral("first"), QStringLiteral("second")}));
    QCOMPARE(held.count(), 0);
    QVERIFY(!held.holding());
}

void TestHeldCalls::slowCallIsFinishedAfterItsDelay()
{
    HeldCalls held;
    bool finished = false;
    held.hold(30);
    QElapsedTimer timer;
    timer.start();
    held.add([&finished] { finished = true; });
    QVERIFY(!finished);
    QTRY_VERIFY(finished);
    // a timer of Qt's may be early by a twentieth
    QVERIFY2(timer.elapsed() >= 28, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(held.count(), 0);
    QVERIFY(held.holding());
}

void TestHeldCalls::releaseFinishesASlowCallOnce()
{
    HeldCalls held;
    int finished = 0;
    held.hold(0);
    held.add([&finished] { ++finished; });
    held.release();
    QCOMPARE(finished, 1);
    bool later = false;
    QTimer::singleShot(20, &held, [&later] { later = true; });
    QTRY_VERIFY(later);
    QCOMPARE(finished, 1);
}

void TestHeldCalls::callThatComesDuringAReleaseIsNotHeld()
{
    HeldCalls held;
    bool holding = true;
    held.hold(std::nullopt);
    held.add([&held, &holding] { holding = held.holding(); });
    held.release();
    QVERIFY(!holding);
}

QTEST_GUILESS_MAIN(TestHeldCalls)
#include "tst_heldcalls.moc"
