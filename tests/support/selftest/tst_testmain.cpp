// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testmain.h"

#include <QProcess>
#include <QTemporaryDir>

class TestTestMain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachFunctionRunsInAProcessAndNamespaceOfItsOwn();
    void oneFailureFailsTheWhole();
    void aCrashFailsTheWholeAndTheRestStillRuns();
    void aNamedFunctionRunsAlone();
    void aNamedRowRunsAlone();
    void anUnknownFunctionFails();
    void everyFunctionBecomesAnEntryOfItsOwn();
    void anExecutableWithoutAnswerIsNotDiscovered();
    void variablesOfTheUserDoNotReachTheTest();

private:
    struct Run
    {
        int exitCode = -1;
        QString output;
        QString errors;
    };
    static Run run(
        const QString &program, const QStringList &arguments, const QStringList &environment = {});
};

TestTestMain::Run TestTestMain::run(
    const QString &program, const QStringList &arguments, const QStringList &environment)
{
    QProcess process;
    process.setEnvironment(QProcess::systemEnvironment() + environment);
    process.start(program, arguments);
    if (!process.waitForFinished())
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError())};
}

void TestTestMain::eachFunctionRunsInAProcessAndNamespaceOfItsOwn()
{
    const Run sample = run(QStringLiteral(SAMPLE_TEST), {});
    QCOMPARE(sample.exitCode, 0);
    QVERIFY(sample.output.contains(QStringLiteral("PASS   : SampleTest::leavesAMark()")));
    QVERIFY(sample.output.contains(QStringLiteral("PASS   : SampleTest::alsoFindsNoMark()")));
    QVERIFY(sample.output.endsWith(QStringLiteral("0 of 6 test functions failed\n")));
}

void TestTestMain::oneFailureFailsTheWhole()
{
    const Run sample = run(QStringLiteral(SAMPLE_TEST), {}, {QStringLiteral("SAMPLE_FAILS=1")});
    QCOMPARE(sample.exitCode, 1);
    QVERIFY(sample.output.endsWith(QStringLiteral("1 of 6 test functions failed\n")));
    QCOMPARE(sample.errors, QStringLiteral("FAILED fails\n"));
}

void TestTestMain::aCrashFailsTheWholeAndTheRestStillRuns()
{
    const Run sample = run(QStringLiteral(SAMPLE_TEST), {},
        {QStringLiteral("SAMPLE_CRASHES=1"), QStringLiteral("SAMPLE_FAILS=1")});
    QCOMPARE(sample.exitCode, 1);
    QVERIFY(sample.output.endsWith(QStringLiteral("2 of 6 test functions failed\n")));
    QVERIFY(sample.errors.contains(QStringLiteral("FAILED crashes\n")));
}

void TestTestMain::aNamedFunctionRunsAlone()
{
    const Run sample = run(QStringLiteral(SAMPLE_TEST), {QStringLiteral("rows")});
    QCOMPARE(sample.exitCode, 0);
    QVERIFY(sample.output.contains(QStringLiteral("PASS   : SampleTest::rows(one)")));
    QVERIFY(sample.output.contains(QStringLiteral("PASS   : SampleTest::rows(two)")));
    QVERIFY(!sample.output.contains(QStringLiteral("SampleTest::passes()")));
}

void TestTestMain::aNamedRowRunsAlone()
{
    const Run sample = run(QStringLiteral(SAMPLE_TEST), {QStringLiteral("rows:two")});
    QCOMPARE(sample.exitCode, 0);
    QVERIFY(!sample.output.contains(QStringLiteral("SampleTest::rows(one)")));
    QVERIFY(sample.output.contains(QStringLiteral("PASS   : SampleTest::rows(two)")));
}

void TestTestMain::anUnknownFunctionFails()
{
    const Run sample = run(QStringLiteral(SAMPLE_TEST), {QStringLiteral("noSuchFunction")});
    QCOMPARE(sample.exitCode, 1);
    QCOMPARE(sample.errors, QStringLiteral("noSuchFunction: no such test function\n"));
}

void TestTestMain::everyFunctionBecomesAnEntryOfItsOwn()
{
    const QTemporaryDir folder;
    const QString entries = folder.filePath(QStringLiteral("entries.cmake"));
    const Run discovery = run(QStringLiteral(CMAKE_PROGRAM),
        {QStringLiteral("-DTEST_EXECUTABLE=" SAMPLE_TEST), QStringLiteral("-DENTRIES=") + entries,
            QStringLiteral("-P"), QStringLiteral(DISCOVER_TESTS)});
    QCOMPARE(discovery.exitCode, 0);
    QFile file(entries);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString expected;
    for (const char *name :
        {"passes", "leavesAMark", "alsoFindsNoMark", "rows", "fails", "crashes"}) {
        expected +=
            QStringLiteral("add_test([=[sampletest.%1]=] [=[" SAMPLE_TEST "]=] [=[%1]=])\n"
                           "set_tests_properties([=[sampletest.%1]=] PROPERTIES TIMEOUT 240)\n")
                .arg(QString::fromLatin1(name));
    }
    QCOMPARE(QString::fromUtf8(file.readAll()), expected);
}

void TestTestMain::anExecutableWithoutAnswerIsNotDiscovered()
{
    const QTemporaryDir folder;
    const QString entries = folder.filePath(QStringLiteral("entries.cmake"));
    const Run discovery = run(QStringLiteral(CMAKE_PROGRAM),
        {QStringLiteral("-DTEST_EXECUTABLE=/bin/true"), QStringLiteral("-DENTRIES=") + entries,
            QStringLiteral("-P"), QStringLiteral(DISCOVER_TESTS)});
    QVERIFY(discovery.exitCode != 0);
    QVERIFY(discovery.errors.contains(QStringLiteral("/bin/true has no test function")));
    QVERIFY(!QFile::exists(entries));
}

void TestTestMain::variablesOfTheUserDoNotReachTheTest()
{
    for (const char *name :
        {"ANDROID_DATA_ROOT", "LUMD_PACKAGE_BLACKLIST_PATH", "DBUS_SESSION_BUS_ADDRESS",
            "DBUS_SYSTEM_BUS_ADDRESS", "QT_LOGGING_RULES", "QT_MESSAGE_PATTERN"})
        QVERIFY2(!qEnvironmentVariableIsSet(name), name);
    QCOMPARE(qgetenv("LC_ALL"), QByteArray("C.UTF-8"));
    QCOMPARE(QFile::encodeName(QStringLiteral("\u00e9")), QByteArray("\xc3\xa9"));
}

LUM_TEST_MAIN(TestTestMain)
#include "tst_testmain.moc"
