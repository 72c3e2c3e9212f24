// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/childprocess.h"
#include "tests/support/testmain.h"

#include <csignal>

class TestChildProcess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void collectsTheLinesOfOneDescriptor();
    void theLastLineNeedsNoLineEnd();
    void theEnvironmentIsTheGivenOneAndNoMore();
    void givesTheExitCode();
    void givesTheSignal();
    void aSignalThatComesAtOnceIsNotLost();
    void aProgramThatPrintsMuchIsNotHeldUp();
    void waitingForALineEndsWithTheProgram();
    void waitingForALineEndsAtTheDeadline();
    void aGrandchildThatKeepsThePipeHoldsNothingUp();
    void itsEndEndsTheProgram();

private:
    static void shell(ChildProcess *process, const char *script,
        const ChildProcess::Environment &environment = {});
};

void TestChildProcess::shell(
    ChildProcess *process, const char *script, const ChildProcess::Environment &environment)
{
    process->start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QString::fromLatin1(script)},
        environment, ChildProcess::Collect::Errors);
}

void TestChildProcess::collectsTheLinesOfOneDescriptor()
{
    ChildProcess process;
    shell(&process, "echo one >&2; echo other >/dev/null; echo two >&2");
    QVERIFY(process.waitForLine(QStringLiteral("two")));
    QVERIFY(process.waitForExit());
    QCOMPARE(process.lines(), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    process.clearLines();
    QCOMPARE(process.lines(), QStringList());
}

void TestChildProcess::theLastLineNeedsNoLineEnd()
{
    ChildProcess process;
    shell(&process, "printf end >&2");
    QVERIFY(process.waitForExit());
    QCOMPARE(process.lines(), QStringList{QStringLiteral("end")});
}

void TestChildProcess::theEnvironmentIsTheGivenOneAndNoMore()
{
    ChildProcess process;
    shell(&process, "/usr/bin/env | /bin/grep -v -e ^PWD= -e ^_= -e ^SHLVL= >&2",
        {{QStringLiteral("COLOUR"), QStringLiteral("blue green")}});
    QVERIFY(process.waitForExit());
    QCOMPARE(process.lines(), QStringList{QStringLiteral("COLOUR=blue green")});
}

void TestChildProcess::givesTheExitCode()
{
    ChildProcess process;
    shell(&process, "exit 3");
    QVERIFY(process.waitForExit());
    QCOMPARE(process.exitCode(), 3);
    QVERIFY(!process.isRunning());
}

void TestChildProcess::givesTheSignal()
{
    ChildProcess process;
    shell(
        &process, "echo up >&2; exec sleep 60", {{QStringLiteral("PATH"), QStringLiteral("/bin")}});
    QVERIFY(process.waitForLine(QStringLiteral("up")));
    QVERIFY(process.isRunning());
    process.signal(SIGTERM);
    QVERIFY(process.waitForExit());
    QCOMPARE(process.exitCode(), -SIGTERM);
}

void TestChildProcess::aSignalThatComesAtOnceIsNotLost()
{
    for (int i = 0; i < 20; ++i) {
        ChildProcess process;
        shell(&process, "exec /bin/sleep 600");
        process.signal(SIGTERM);
        QVERIFY(process.waitForExit());
        QCOMPARE(process.exitCode(), -SIGTERM);
    }
}

void TestChildProcess::aProgramThatPrintsMuchIsNotHeldUp()
{
    ChildProcess process;
    shell(&process, "i=0; while [ $i -lt 20000 ]; do echo $i 0123456789 >&2; i=$((i+1)); done");
    QVERIFY(process.waitForExit(30000));
    QCOMPARE(process.lines().size(), 20000);
    QCOMPARE(process.lines().last(), QStringLiteral("19999 0123456789"));
}

void TestChildProcess::waitingForALineEndsWithTheProgram()
{
    ChildProcess process;
    shell(&process, "echo one >&2");
    QVERIFY(!process.waitForLine(QStringLiteral("never"), 60000));
    QVERIFY(!process.waitForLineThatBegins(QStringLiteral("two"), 60000));
    QVERIFY(process.waitForLineThatBegins(QStringLiteral("on")));
}

void TestChildProcess::waitingForALineEndsAtTheDeadline()
{
    ChildProcess process;
    shell(&process, "exec /bin/sleep 60");
    QVERIFY(!process.waitForLine(QStringLiteral("never"), 20));
    QVERIFY(!process.waitForLineThatBegins(QStringLiteral("never"), 20));
    QVERIFY(!process.waitForExit(20));
    QVERIFY(process.isRunning());
}

void TestChildProcess::aGrandchildThatKeepsThePipeHoldsNothingUp()
{
    ChildProcess process;
    shell(&process, "/bin/sleep 600 >/dev/null & echo $! >&2");
    QVERIFY(process.waitForExit());
    QCOMPARE(process.lines().size(), 1);
    QCOMPARE(::kill(process.lines().first().toInt(), SIGKILL), 0);
}

void TestChildProcess::itsEndEndsTheProgram()
{
    int processId = 0;
    {
        ChildProcess process;
        shell(&process, "exec /bin/sleep 600");
        processId = process.processId();
        QVERIFY(::kill(processId, 0) == 0);
    }
    QVERIFY(::kill(processId, 0) != 0);
    QCOMPARE(errno, ESRCH);
}

LUM_TEST_MAIN(TestChildProcess)
#include "tst_childprocess.moc"
