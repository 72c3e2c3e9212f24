// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

using namespace LauncherFiles;

class TestDesktopManagerFaultyDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fullDiskSparesTheOtherFiles_data();
    void fullDiskSparesTheOtherFiles();
    void readOnlyFolderSparesTheOtherFiles_data();
    void readOnlyFolderSparesTheOtherFiles();
    void directoryInThePlaceOfAnEntryStays();
    void directoryInThePlaceOfAnEntryIsNotDeleted();
    void danglingLinkInThePlaceOfAnEntryGetsItsTarget();
    void danglingLinkInThePlaceOfAnEntryIsNoInstalledLauncher();
    void directoryInThePlaceOfAnIconStays();
    void fileInThePlaceOfTheFolderOfIcons();
};

void TestDesktopManagerFaultyDisk::fullDiskSparesTheOtherFiles_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("warning");

    const ApkLauncher app = launcher("a");
    QTest::newRow("entries") << QString::fromLatin1(
        applications) << pathLine("warning", "Could not write desktop file", desktopPath(app));
    QTest::newRow("icons") << QString::fromLatin1(icons) << iconFailure(app);
    QTest::newRow("settings") << QString::fromLatin1(settings) << settingFailure(app);
}

void TestDesktopManagerFaultyDisk::fullDiskSparesTheOtherFiles()
{
    QFETCH(QString, folder);
    QFETCH(QString, warning);

    TestNamespace::mountSmallDisk(folder, 64);
    DesktopManager manager{ApkConfig()};
    const ApkLauncher old = launcher("a");
    manager.onCreateLauncher(old);
    const QByteArray oldSetting = read(settingsPath(old));
    fillDisk(folder);
    const QStringList before = listing(folder);

    ApkLauncher changed = old;
    changed.caption = QStringLiteral("Changed");
    changed.icon = QByteArray(100, 'c');
    changed.packageVersion = QStringLiteral("2");
    const LogCapture log;
    manager.onCreateLauncher(changed);
    QCOMPARE(warnings(log), QStringList(warning));
    QCOMPARE(listing(folder), before);
    const auto spared = [&](const char *directory) { return folder != QLatin1String(directory); };
    QCOMPARE(read(desktopPath(old)), entryText(spared(applications) ? changed : old));
    QCOMPARE(read(iconPath(old)), (spared(icons) ? changed : old).icon);
    QCOMPARE(read(settingsPath(old)),
        spared(settings) ? QByteArray(oldSetting).replace("\"1\"", "\"2\"") : oldSetting);

    QVERIFY(QFile::remove(folder + QLatin1String("filler")));
    manager.onCreateLauncher(changed);
    QCOMPARE(warnings(log), QStringList(warning));
    QCOMPARE(read(desktopPath(old)), entryText(changed));
    QCOMPARE(read(iconPath(old)), changed.icon);
    QCOMPARE(allFiles(), filesOf(old));
}

void TestDesktopManagerFaultyDisk::readOnlyFolderSparesTheOtherFiles_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("warning");

    const ApkLauncher app = launcher("a");
    QTest::newRow("entries") << QString::fromLatin1(applications) << openFailure(app);
    QTest::newRow("icons") << QString::fromLatin1(icons) << iconFailure(app);
    QTest::newRow("settings") << QString::fromLatin1(settings) << settingFailure(app);
}

void TestDesktopManagerFaultyDisk::readOnlyFolderSparesTheOtherFiles()
{
    QFETCH(QString, folder);
    QFETCH(QString, warning);

    DesktopManager manager{ApkConfig()};
    TestNamespace::setReadOnly(folder, true);
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const ApkLauncher app = launcher("a");
    {
        const LogCapture log;
        manager.onCreateLauncher(app);
        QCOMPARE(warnings(log), QStringList(warning));
    }
    QCOMPARE(installed.size(), 1);
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory).isEmpty(), folder == QLatin1String(directory));

    TestNamespace::setReadOnly(folder, false);
    manager.onCreateLauncher(app);
    QCOMPARE(allFiles(), filesOf(app));
    manager.deleteLauncher(desktopPath(app));
}

void TestDesktopManagerFaultyDisk::directoryInThePlaceOfAnEntryStays()
{
    const ApkLauncher app = launcher("a");
    makeDirectory(desktopPath(app));
    DesktopManager manager{ApkConfig()};
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log), QStringList(openFailure(app)));
    QCOMPARE(installed.size(), 0);
    QCOMPARE(listing(desktopPath(app)), QStringList());
    QCOMPARE(read(iconPath(app)), app.icon);
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerFaultyDisk::directoryInThePlaceOfAnEntryIsNotDeleted()
{
    const ApkLauncher app = launcher("a");
    makeDirectory(desktopPath(app));
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(warnings(log),
        QStringList({
            logLine("warning",
                QStringLiteral("File \"%1\" does not have key: \"X-lumd-packageName\"")
                    .arg(desktopPath(app))),
            pathLine("warning", "Could not remove:", desktopPath(app)),
            pathLine("warning", "Could not remove:", iconPath(app)),
        }));
    QVERIFY(QFileInfo(desktopPath(app)).isDir());
}

void TestDesktopManagerFaultyDisk::danglingLinkInThePlaceOfAnEntryGetsItsTarget()
{
    const ApkLauncher app = launcher("a");
    const QString behind = QStringLiteral("/run/behind");
    QVERIFY(QFile::link(behind, desktopPath(app)));
    DesktopManager manager{ApkConfig()};
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log), QStringList());
    QCOMPARE(installed.size(), 1);
    QVERIFY(QFileInfo(desktopPath(app)).isSymLink());
    QCOMPARE(read(behind), entryText(app));
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerFaultyDisk::danglingLinkInThePlaceOfAnEntryIsNoInstalledLauncher()
{
    const ApkLauncher app = launcher("a");
    QVERIFY(QFile::link(QStringLiteral("/run/missing/behind"), desktopPath(app)));
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(manager.desktopFiles(), QStringList());
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(QFileInfo(desktopPath(app)).isSymLink());
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log), QStringList(openFailure(app)));
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerFaultyDisk::directoryInThePlaceOfAnIconStays()
{
    const ApkLauncher app = launcher("a");
    DesktopManager manager{ApkConfig()};
    makeDirectory(iconPath(app));
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log), QStringList(iconFailure(app)));
    QCOMPARE(read(desktopPath(app)), entryText(app));
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerFaultyDisk::fileInThePlaceOfTheFolderOfIcons()
{
    const QString file = QStringLiteral("/var/lib/lumd");
    write(file, "a file");
    const LogCapture log;
    DesktopManager manager{ApkConfig()};
    QCOMPARE(warnings(log),
        QStringList(logLine("warning", QStringLiteral("Cannot create directory: /var/lib/lumd/"))));
    const ApkLauncher app = launcher("a");
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log).mid(1), QStringList(iconFailure(app)));
    QCOMPARE(read(desktopPath(app)), entryText(app));
    QVERIFY(QFile::exists(settingsPath(app)));
    QCOMPARE(read(file), QByteArray("a file"));
}

LUM_TEST_MAIN(TestDesktopManagerFaultyDisk)
#include "tst_desktopmanagerfaultydisk.moc"
