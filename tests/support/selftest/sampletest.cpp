// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testmain.h"

/// What tst_testmain runs: functions that pass, that fail, and that leave a mark behind.
class SampleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passes() { }
    void leavesAMark();
    void alsoFindsNoMark() { leavesAMark(); }
    void rows_data();
    void rows();
    void fails() { QVERIFY2(!qEnvironmentVariableIsSet("SAMPLE_FAILS"), "as asked"); }
    void crashes();

public Q_SLOTS:
    void isNoTest() { qFatal("a public slot is no test function"); }
};

void SampleTest::leavesAMark()
{
    static bool marked = false;
    QVERIFY(!marked);
    QVERIFY(!QFile::exists(QStringLiteral("/run/mark")));
    marked = true;
    QVERIFY(QFile(QStringLiteral("/run/mark")).open(QIODevice::WriteOnly));
}

void SampleTest::rows_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("one") << 1;
    QTest::newRow("two") << 2;
}

void SampleTest::rows()
{
    QFETCH(int, number);
    QVERIFY(number < 3);
}

void SampleTest::crashes()
{
    if (qEnvironmentVariableIsSet("SAMPLE_CRASHES"))
        abort();
}

LUM_TEST_MAIN(SampleTest)
#include "sampletest.moc"
