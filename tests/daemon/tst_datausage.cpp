// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/datausage.h"

#include "tests/daemon/daemonfixture.h"
#include "tests/support/logcapture.h"
#include "tests/support/ownclock.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>
#include <QProcess>
#include <QTimer>

#include <csignal>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const QString runs = QStringLiteral("/run/du-runs");
const QString goOn = QStringLiteral("/run/go-on");
const QString noAnswer =
    QStringLiteral("warning com.tovra.lumd.daemon Could not determine android app data usage");

/// Writes down its number, prints that as its answer, and then waits for a file.
const QByteArray slowDu = "#!/bin/sh\n"
                          "echo $$ >> /run/du-runs\n"
                          "printf '%s\\t/\\n' $(wc -l < /run/du-runs)\n"
                          ": > /run/du-printed\n"
                          "while [ ! -e /run/go-on ]; do sleep 0.02; done\n";

int countOfRuns()
{
    return fileContents(runs).count('\n');
}

bool hasPrinted()
{
    return QTest::qWaitFor([] { return QFile::exists(QStringLiteral("/run/du-printed")); });
}

} // namespace

class TestDataUsage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void everybodyWhoAsksMeanwhileGetsTheOneAnswer();
    void nextQuestionIsCountedAnew();
    void deadlineEndsDu();
    void nextDuStartsWhenTheEndedOneIsGone();
    void duThatIsSlowToGoIsNotJoinedByAnother();
    void duThatCannotStartIsAnsweredFor();
    void answerEndsTimerAndProcess();

private:
    DataUsage::Answer noteAnswer();

    QVector<quint64> m_answers;
};

void TestDataUsage::init()
{
    for (const QString &file : {runs, goOn, QStringLiteral("/run/du-printed")})
        QFile::remove(file);
    TestNamespace::replaceProgram(QStringLiteral("/usr/bin/du"), slowDu);
    m_answers.clear();
}

DataUsage::Answer TestDataUsage::noteAnswer()
{
    return [this](quint64 bytes) { m_answers += bytes; };
}

void TestDataUsage::everybodyWhoAsksMeanwhileGetsTheOneAnswer()
{
    DataUsage usage;
    usage.ask(QStringLiteral("/"), noteAnswer());
    QVERIFY(hasPrinted());
    usage.ask(QStringLiteral("/"), noteAnswer());
    usage.ask(QStringLiteral("/"), noteAnswer());
    QVERIFY(m_answers.isEmpty());
    makeFile(goOn);
    QTRY_COMPARE(m_answers, QVector<quint64>({1, 1, 1}));
    QCOMPARE(countOfRuns(), 1);
}

void TestDataUsage::nextQuestionIsCountedAnew()
{
    makeFile(goOn);
    DataUsage usage;
    for (int count = 1; count <= 3; ++count) {
        usage.ask(QStringLiteral("/"), noteAnswer());
        QTRY_COMPARE(m_answers.size(), count);
    }
    QCOMPARE(m_answers, QVector<quint64>({1, 2, 3}));
}

void TestDataUsage::deadlineEndsDu()
{
    DataUsage usage;
    usage.ask(QStringLiteral("/"), noteAnswer());
    QVERIFY(hasPrinted());
    shiftClock(29s);
    QTest::qWait(50);
    QVERIFY(m_answers.isEmpty());
    // Who comes late has no time of his own.
    usage.ask(QStringLiteral("/"), noteAnswer());
    shiftClock(1s);
    QTRY_COMPARE(m_answers, QVector<quint64>({1, 1}));
    const pid_t process = fileContents(runs).trimmed().toInt();
    QVERIFY(process > 0);
    QTRY_COMPARE(kill(process, 0), -1);
}

void TestDataUsage::nextDuStartsWhenTheEndedOneIsGone()
{
    DataUsage usage;
    // In the same breath: the one that was ended cannot have been noticed to go.
    usage.ask(QStringLiteral("/"), [this, &usage](quint64 bytes) {
        m_answers += bytes;
        usage.ask(QStringLiteral("/"), noteAnswer());
        QCOMPARE(countOfRuns(), 1);
    });
    QVERIFY(hasPrinted());
    shiftClock(30s);
    QTRY_COMPARE(m_answers, QVector<quint64>{1});
    QTRY_COMPARE(countOfRuns(), 2);
    makeFile(goOn);
    QTRY_COMPARE(m_answers, QVector<quint64>({1, 2}));
}

void TestDataUsage::duThatIsSlowToGoIsNotJoinedByAnother()
{
    const LogCapture log;
    DataUsage usage;
    usage.ask(QStringLiteral("/"), [this, &usage](quint64 bytes) {
        m_answers += bytes;
        usage.ask(QStringLiteral("/"), noteAnswer());
        // Before anything else is looked at, its time is over too.
        shiftClock(30s);
        QMetaObject::invokeMethod(usage.findChild<QTimer *>(), "timeout");
    });
    QVERIFY(hasPrinted());
    shiftClock(30s);
    QTRY_COMPARE(m_answers, QVector<quint64>({1, 0}));
    QCOMPARE(log.lines(), QStringList{noAnswer});
    QCOMPARE(countOfRuns(), 1);
}

void TestDataUsage::duThatCannotStartIsAnsweredFor()
{
    TestNamespace::replaceProgram(QStringLiteral("/usr/bin/du"), "#!/run/no-such-program\n");
    const LogCapture log;
    DataUsage usage;
    for (int count = 1; count <= 2; ++count) {
        usage.ask(QStringLiteral("/"), noteAnswer());
        QTRY_COMPARE(m_answers, QVector<quint64>(count, 0));
    }
    QCOMPARE(log.lines(), QStringList({noAnswer, noAnswer}));
}

void TestDataUsage::answerEndsTimerAndProcess()
{
    makeFile(goOn);
    DataUsage usage;
    const QTimer *const timer = usage.findChild<QTimer *>();
    // A coarse one may be more than a second early or late.
    QCOMPARE(timer->timerType(), Qt::PreciseTimer);
    usage.ask(QStringLiteral("/"), noteAnswer());
    QVERIFY(timer->isActive());
    QTRY_COMPARE(m_answers.size(), 1);
    QVERIFY(!timer->isActive());
    QTRY_COMPARE(usage.findChildren<QProcess *>().size(), 0);
}

LUM_TEST_MAIN(TestDataUsage)
#include "tst_datausage.moc"
