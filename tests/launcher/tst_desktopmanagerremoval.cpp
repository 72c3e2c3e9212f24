// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QSignalSpy>

using namespace LauncherFiles;

namespace {

QStringList deletionLines(const ApkLauncher &launcher)
{
    return {
        pathLine("debug", "Deleting:", desktopPath(launcher)),
        pathLine("debug", "Deleting:", iconPath(launcher)),
    };
}

QString couldNotRemove(const QString &path)
{
    return pathLine("warning", "Could not remove:", path);
}

} // namespace

class TestDesktopManagerRemoval : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void allFilesOfALauncherAreDeleted();
    void failedDeletionsAreToldAndTheOthersGoOn_data();
    void failedDeletionsAreToldAndTheOthersGoOn();
    void removedPackageLosesAllItsLaunchers();
    void unknownPackageRemovesNothing_data();
    void unknownPackageRemovesNothing();
    void packageNameBeyondAsciiIsNotFoundInItsLatin1Form();
    void walkOverTheRecordsTakesEverySecondStep_data();
    void walkOverTheRecordsTakesEverySecondStep();
    void repeatedAnnouncementMovesTheRecordToTheEnd();
    void repeatedAnnouncementLeavesOneRecord();
};

void TestDesktopManagerRemoval::init()
{
    makeDirectory(QLatin1String(icons));
}

void TestDesktopManagerRemoval::allFilesOfALauncherAreDeleted()
{
    const ApkLauncher maps = launcher("a.maps");
    const QString path = leaveBehind(maps);
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    QVERIFY(manager.deleteLauncher(path));
    QCOMPARE(allFiles(), QStringList());
    QCOMPARE(log.lines(), deletionLines(maps));
}

void TestDesktopManagerRemoval::failedDeletionsAreToldAndTheOthersGoOn_data()
{
    QTest::addColumn<bool>("hasEntry");
    QTest::addColumn<bool>("hasIcon");
    QTest::addColumn<bool>("hasSetting");

    for (int i = 0; i < 8; ++i)
        QTest::addRow("%d", i) << bool(i & 1) << bool(i & 2) << bool(i & 4);
}

void TestDesktopManagerRemoval::failedDeletionsAreToldAndTheOthersGoOn()
{
    QFETCH(bool, hasEntry);
    QFETCH(bool, hasIcon);
    QFETCH(bool, hasSetting);

    const ApkLauncher maps = launcher("a.maps");
    leaveBehind(maps);
    DesktopManager manager{ApkConfig()};
    QStringList expected{deletionLines(maps).first()};
    if (!hasEntry) {
        QVERIFY(QFile::remove(desktopPath(maps)));
        expected << couldNotRemove(desktopPath(maps));
    }
    expected << deletionLines(maps).last();
    if (!hasIcon) {
        QVERIFY(QFile::remove(iconPath(maps)));
        expected << couldNotRemove(iconPath(maps));
    }
    // A settings entry that is missing is no failure.
    if (!hasSetting)
        QVERIFY(QFile::remove(settingsPath(maps)));
    const LogCapture log;
    QCOMPARE(manager.deleteLauncher(desktopPath(maps)), hasEntry);
    QCOMPARE(log.lines(), expected);
    QCOMPARE(allFiles(), QStringList());
}

void TestDesktopManagerRemoval::removedPackageLosesAllItsLaunchers()
{
    const ApkLauncher one = launcher("a.maps", "One");
    const ApkLauncher two = launcher("a.maps", "Two");
    const ApkLauncher other = launcher("b.mail");
    DesktopManager manager{ApkConfig()};
    for (const ApkLauncher &app : {two, other, one})
        manager.onCreateLauncher(app);

    const QSignalSpy gone(&manager, &DesktopManager::launcherGone);
    const LogCapture log;
    manager.onRemovePackage(QStringLiteral("a.maps"));
    QCOMPARE(log.lines(),
        QStringList(logLine("debug", QStringLiteral("onRemovePackage: \"a.maps\"")))
            << deletionLines(one) << deletionLines(two));
    QCOMPARE(gone.size(), 2);
    QCOMPARE(gone.first(), QVariantList({desktopPath(one), one.packageName}));
    QCOMPARE(gone.last(), QVariantList({desktopPath(two), two.packageName}));
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory).size(), 1);
    QCOMPARE(read(desktopPath(other)), entryText(other));
}

void TestDesktopManagerRemoval::unknownPackageRemovesNothing_data()
{
    QTest::addColumn<QString>("package");

    QTest::newRow("unknown") << QStringLiteral("b");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("null") << QString();
    QTest::newRow("other case") << QStringLiteral("A.maps");
    QTest::newRow("prefix") << QStringLiteral("a");
    QTest::newRow("pattern") << QStringLiteral("*");
}

void TestDesktopManagerRemoval::unknownPackageRemovesNothing()
{
    QFETCH(QString, package);

    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(launcher("a.maps"));
    const LogCapture log;
    manager.onRemovePackage(package);
    QCOMPARE(log.lines(),
        QStringList(logLine("debug", QStringLiteral("onRemovePackage: \"%1\"").arg(package))));
    QCOMPARE(read(desktopPath(launcher("a.maps"))), entryText(launcher("a.maps")));
}

// The name of a removed package comes as the bytes of its UTF-8 form, each one a character.
void TestDesktopManagerRemoval::packageNameBeyondAsciiIsNotFoundInItsLatin1Form()
{
    const ApkLauncher app = launcher("\xc3\xa4.maps");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    manager.onRemovePackage(QString::fromLatin1("\xc3\xa4.maps"));
    QVERIFY(QFile::exists(desktopPath(app)));
    manager.onRemovePackage(app.packageName);
    QCOMPARE(allFiles(), QStringList());
}

// A record that stayed shows by its entry, put there again, being expected.
void TestDesktopManagerRemoval::walkOverTheRecordsTakesEverySecondStep_data()
{
    QTest::addColumn<QByteArray>("announced");
    QTest::addColumn<QByteArray>("stays"); // 1 for each record of A that stays

    QTest::newRow("A") << QByteArray("A") << QByteArray("0");
    QTest::newRow("A A") << QByteArray("AA") << QByteArray("01");
    QTest::newRow("A A A") << QByteArray("AAA") << QByteArray("010");
    QTest::newRow("A A A A") << QByteArray("AAAA") << QByteArray("0101");
    QTest::newRow("A B A") << QByteArray("ABA") << QByteArray("0x0");
    QTest::newRow("B A C") << QByteArray("BAC") << QByteArray("x1x");
    QTest::newRow("B A") << QByteArray("BA") << QByteArray("x1");
    QTest::newRow("B B A") << QByteArray("BBA") << QByteArray("xx0");
    QTest::newRow("A B B A") << QByteArray("ABBA") << QByteArray("0xx1");
    QTest::newRow("A B B B A") << QByteArray("ABBBA") << QByteArray("0xxx0");
    QTest::newRow("B C") << QByteArray("BC") << QByteArray("xx");
}

void TestDesktopManagerRemoval::walkOverTheRecordsTakesEverySecondStep()
{
    QFETCH(QByteArray, announced);
    QFETCH(QByteArray, stays);

    DesktopManager manager{ApkConfig()};
    QVector<ApkLauncher> apps;
    for (int i = 0; i < announced.size(); ++i) {
        apps.append(launcher(announced.mid(i, 1).constData(), QByteArray::number(i).constData()));
        manager.onCreateLauncher(apps.last());
    }
    manager.onRemovePackage(QStringLiteral("A"));
    for (int i = 0; i < apps.size(); ++i) {
        QCOMPARE(QFile::exists(desktopPath(apps.at(i))), announced.at(i) != 'A');
        leaveBehind(apps.at(i));
    }
    manager.onLaunchersComplete();
    for (int i = 0; i < apps.size(); ++i)
        QCOMPARE(QFile::exists(desktopPath(apps.at(i))), stays.at(i) != '0');
    manager.onRemovePackage(QStringLiteral("A"));
    manager.onRemovePackage(QStringLiteral("B"));
    manager.onRemovePackage(QStringLiteral("C"));
    QCOMPARE(allFiles(), QStringList());
}

void TestDesktopManagerRemoval::repeatedAnnouncementMovesTheRecordToTheEnd()
{
    DesktopManager manager{ApkConfig()};
    for (const char *package : {"A", "B", "A"})
        manager.onCreateLauncher(launcher(package));
    // Now B, A: the walk does not look at A.
    manager.onRemovePackage(QStringLiteral("A"));
    leaveBehind(launcher("A"));
    manager.onLaunchersComplete();
    QVERIFY(QFile::exists(desktopPath(launcher("A"))));
}

void TestDesktopManagerRemoval::repeatedAnnouncementLeavesOneRecord()
{
    DesktopManager manager{ApkConfig()};
    for (const char *caption : {"one", "two", "three"}) {
        ApkLauncher app = launcher("A");
        app.caption = QString::fromLatin1(caption);
        manager.onCreateLauncher(app);
    }
    manager.onRemovePackage(QStringLiteral("A"));
    leaveBehind(launcher("A"));
    manager.onLaunchersComplete();
    QCOMPARE(allFiles(), QStringList());
}

LUM_TEST_MAIN(TestDesktopManagerRemoval)
#include "tst_desktopmanagerremoval.moc"
