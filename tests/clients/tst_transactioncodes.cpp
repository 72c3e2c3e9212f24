// SPDX-License-Identifier: BSD-3-Clause
#include "clients/transactioncodes.h"

#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

namespace {

constexpr TransactionCodes codes{127, 128, 129};
constexpr char unsupported[] = "critical com.tovra.lumd.binder Unsupported android SDK version!";
constexpr char notFound[] =
    "critical com.tovra.lumd.config Cannot find sdk version in /opt/alien/ build properties";

} // namespace

// The level is fixed for a process, and each test function has a process of its own.
class TestTransactionCodes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void level27HasItsCode() { check(27, 127, {}); }
    void level28HasItsCode() { check(28, 128, {}); }
    void level29HasItsCode() { check(29, 129, {}); }
    void level26GetsTheCodeOf29() { check(26, 129, texts({unsupported})); }
    void level30GetsTheCodeOf29() { check(30, 129, texts({unsupported})); }
    void negativeLevelGetsTheCodeOf29() { check(-27, 129, texts({unsupported})); }
    void unknownLevelGetsTheCodeOf29();

private:
    static void check(int level, quint32 code, const QStringList &lines)
    {
        QVERIFY(installRuntime(level));
        LogCapture log;
        QCOMPARE(transactionCode(codes), code);
        QCOMPARE(log.take(), lines);
        // Said for each call.
        QCOMPARE(transactionCode(codes), code);
        QCOMPARE(log.take(), lines);
    }
};

void TestTransactionCodes::unknownLevelGetsTheCodeOf29()
{
    LogCapture log;
    QCOMPARE(transactionCode(codes), 129U);
    QCOMPARE(log.lines(), texts({notFound, unsupported}));
}

LUM_TEST_MAIN(TestTransactionCodes)
#include "tst_transactioncodes.moc"
