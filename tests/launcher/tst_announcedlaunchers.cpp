// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/announcedlaunchers.h"

#include "launcher/apklauncher.h"
#include "tests/support/testmain.h"

namespace {

// The entry of a launcher, here of its own for each.
QString entryOf(const QString &package, const QString &className)
{
    return package + QLatin1Char('/') + className;
}

void add(AnnouncedLaunchers &announced, const QString &package, const QString &className)
{
    ApkLauncher launcher;
    launcher.packageName = package;
    launcher.className = className;
    announced.add(launcher, entryOf(package, className));
}

} // namespace

class TestAnnouncedLaunchers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entryIsKnownOnceAnnounced();
    void walkTakesEverySecondStep_data();
    void walkTakesEverySecondStep();
    void repeatedLauncherMovesToTheEnd();
    void repeatedLauncherIsThereOnce();
    void entryOfTwoLaunchersStaysForTheOther();
    void sameEntryIsNotTheSameLauncher();
};

void TestAnnouncedLaunchers::entryIsKnownOnceAnnounced()
{
    AnnouncedLaunchers announced;
    QVERIFY(!announced.haveEntry(QStringLiteral("a/1")));
    QVERIFY(!announced.haveEntry({}));
    add(announced, QStringLiteral("a"), QStringLiteral("1"));
    QVERIFY(announced.haveEntry(QStringLiteral("a/1")));
    QVERIFY(!announced.haveEntry(QStringLiteral("A/1")));
    QVERIFY(!announced.haveEntry(QStringLiteral("a")));
    announced.removePackage(QStringLiteral("b"));
    QVERIFY(announced.haveEntry(QStringLiteral("a/1")));
    announced.removePackage(QStringLiteral("a"));
    QVERIFY(!announced.haveEntry(QStringLiteral("a/1")));
    announced.removePackage(QStringLiteral("a"));
}

void TestAnnouncedLaunchers::walkTakesEverySecondStep_data()
{
    QTest::addColumn<QByteArray>("packages"); // one letter each, with their number as class
    QTest::addColumn<QByteArray>("left"); // behind the removal of A: 1 for each that stays

    const auto row = [](const char *packages, const char *left) {
        QTest::newRow(packages) << QByteArray(packages) << QByteArray(left);
    };
    row("", "");
    row("A", "0");
    row("AA", "01");
    row("AAA", "010");
    row("AAAA", "0101");
    row("ABA", "010");
    row("BA", "11");
    row("BAC", "111");
    row("BBA", "110");
    row("ABBA", "0111");
    row("ABBBA", "01110");
    row("BC", "11");
}

void TestAnnouncedLaunchers::walkTakesEverySecondStep()
{
    QFETCH(QByteArray, packages);
    QFETCH(QByteArray, left);

    AnnouncedLaunchers announced;
    for (int i = 0; i < packages.size(); ++i)
        add(announced, QString::fromLatin1(packages.mid(i, 1)), QString::number(i));
    announced.removePackage(QStringLiteral("A"));
    for (int i = 0; i < packages.size(); ++i) {
        const QString entry = entryOf(QString::fromLatin1(packages.mid(i, 1)), QString::number(i));
        QCOMPARE(announced.haveEntry(entry), left.at(i) == '1');
    }
}

void TestAnnouncedLaunchers::repeatedLauncherMovesToTheEnd()
{
    AnnouncedLaunchers announced;
    for (const char *package : {"A", "B", "A"})
        add(announced, QString::fromLatin1(package), QStringLiteral("1"));
    // Now B, A: the walk does not look at A.
    announced.removePackage(QStringLiteral("A"));
    QVERIFY(announced.haveEntry(QStringLiteral("A/1")));
    add(announced, QStringLiteral("B"), QStringLiteral("1"));
    announced.removePackage(QStringLiteral("A"));
    QVERIFY(!announced.haveEntry(QStringLiteral("A/1")));
}

void TestAnnouncedLaunchers::repeatedLauncherIsThereOnce()
{
    AnnouncedLaunchers announced;
    for (int i = 0; i < 3; ++i)
        add(announced, QStringLiteral("A"), QStringLiteral("1"));
    announced.removePackage(QStringLiteral("A"));
    QVERIFY(!announced.haveEntry(QStringLiteral("A/1")));
}

void TestAnnouncedLaunchers::entryOfTwoLaunchersStaysForTheOther()
{
    // As "a._b" and "a_.b" have it.
    const QString entry = QStringLiteral("shared");
    AnnouncedLaunchers announced;
    for (const char *package : {"A", "B"}) {
        ApkLauncher launcher;
        launcher.packageName = QString::fromLatin1(package);
        announced.add(launcher, entry);
    }
    announced.removePackage(QStringLiteral("A"));
    QVERIFY(announced.haveEntry(entry));
    announced.removePackage(QStringLiteral("B"));
    QVERIFY(!announced.haveEntry(entry));
}

void TestAnnouncedLaunchers::sameEntryIsNotTheSameLauncher()
{
    AnnouncedLaunchers announced;
    for (const char *className : {"1", "2", "1"}) {
        ApkLauncher launcher;
        launcher.packageName = QStringLiteral("A");
        launcher.className = QString::fromLatin1(className);
        announced.add(launcher, QStringLiteral("shared"));
    }
    // Two records: the walk leaves the second.
    announced.removePackage(QStringLiteral("A"));
    QVERIFY(announced.haveEntry(QStringLiteral("shared")));
    announced.removePackage(QStringLiteral("A"));
    QVERIFY(!announced.haveEntry(QStringLiteral("shared")));
}

LUM_TEST_MAIN(TestAnnouncedLaunchers)
#include "tst_announcedlaunchers.moc"
