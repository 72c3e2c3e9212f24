// SPDX-License-Identifier: BSD-3-Clause
#include "windowlist.h"

#include <QtTest>

class TestWindowList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void windowIsThereAfterItWasAskedForInVain();
    void windowThatIsThereStays();
    void closedWindowIsGone();
};

void TestWindowList::windowIsThereAfterItWasAskedForInVain()
{
    WindowList windows(2);
    QVERIFY(!windows.poll(QStringLiteral("a")));
    windows.open(QStringLiteral("a"));
    QCOMPARE(windows.packages(), QStringList{QStringLiteral("a")});
    QVERIFY(!windows.poll(QStringLiteral("a")));
    QVERIFY(!windows.poll(QStringLiteral("b")));
    QVERIFY(!windows.poll(QStringLiteral("a")));
    QVERIFY(windows.poll(QStringLiteral("a")));
    QVERIFY(windows.poll(QStringLiteral("a")));
}

void TestWindowList::windowThatIsThereStays()
{
    WindowList windows(0);
    windows.open(QStringLiteral("a"));
    windows.setPolls(3);
    windows.open(QStringLiteral("a"));
    QVERIFY(windows.poll(QStringLiteral("a")));
}

void TestWindowList::closedWindowIsGone()
{
    WindowList windows(0);
    windows.open(QStringLiteral("a"));
    windows.close(QStringLiteral("a"));
    QVERIFY(!windows.poll(QStringLiteral("a")));
    QCOMPARE(windows.packages(), QStringList());
}

QTEST_APPLESS_MAIN(TestWindowList)
#include "tst_windowlist.moc"
