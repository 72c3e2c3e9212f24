// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QSignalSpy>

using namespace LauncherFiles;

class TestDesktopManagerUpdate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void secondAnnouncementTouchesNothing();
    void onlyTheChangedFileIsRewritten_data();
    void onlyTheChangedFileIsRewritten();
    void oldEntryIsBroughtUpToDate();
    void iconThatWasLostIsWrittenAgain();
    void iconOfANewEntryIsAlwaysWritten();
};

void TestDesktopManagerUpdate::secondAnnouncementTouchesNothing()
{
    const ApkLauncher maps = launcher("a.maps");
    DesktopManager first{ApkConfig()};
    first.onCreateLauncher(maps);
    const Stamp entry = stamp(desktopPath(maps));
    const Stamp icon = stamp(iconPath(maps));
    const Stamp setting = stamp(settingsPath(maps));

    DesktopManager afterRestart{ApkConfig()};
    for (DesktopManager *manager : {&first, &first, &afterRestart}) {
        const QSignalSpy installed(manager, &DesktopManager::newApplicationInstalled);
        const QSignalSpy announced(manager, &DesktopManager::launcherChanged);
        const LogCapture log;
        manager->onCreateLauncher(maps);
        QCOMPARE(installed.size(), 0);
        QCOMPARE(announced.size(), 0);
        QCOMPARE(log.lines(), announcedLines(maps));
        QVERIFY(stamp(desktopPath(maps)) == entry);
        QVERIFY(stamp(iconPath(maps)) == icon);
        QVERIFY(stamp(settingsPath(maps)) == setting);
    }
}

void TestDesktopManagerUpdate::onlyTheChangedFileIsRewritten_data()
{
    QTest::addColumn<ApkLauncher>("changed");
    QTest::addColumn<bool>("entryChanges");
    QTest::addColumn<bool>("iconChanges");
    QTest::addColumn<bool>("settingChanges");

    ApkLauncher changed = launcher("a.maps");
    changed.caption = QStringLiteral("Other");
    QTest::newRow("caption") << changed << true << false << false;
    changed = launcher("a.maps");
    changed.icon = "Icon";
    QTest::newRow("icon") << changed << false << true << false;
    changed = launcher("a.maps");
    changed.packageVersion = QStringLiteral("2");
    QTest::newRow("version") << changed << false << false << true;
    changed.packageVersion = QString();
    QTest::newRow("no version") << changed << false << false << true;
}

void TestDesktopManagerUpdate::onlyTheChangedFileIsRewritten()
{
    QFETCH(ApkLauncher, changed);
    QFETCH(bool, entryChanges);
    QFETCH(bool, iconChanges);
    QFETCH(bool, settingChanges);

    const ApkLauncher maps = launcher("a.maps");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(maps);
    const Stamp entry = stamp(desktopPath(maps));
    const Stamp icon = stamp(iconPath(maps));
    const Stamp setting = stamp(settingsPath(maps));
    const QByteArray settingText = read(settingsPath(maps));

    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const QSignalSpy announced(&manager, &DesktopManager::launcherChanged);
    const LogCapture log;
    manager.onCreateLauncher(changed);
    QCOMPARE(installed.size(), 0);
    QCOMPARE(announced.size(), 1);
    QCOMPARE(log.lines(), entryChanges ? rewrittenLines(maps) : announcedLines(maps));
    QCOMPARE(stamp(desktopPath(maps)).inode != entry.inode, entryChanges);
    QCOMPARE(stamp(iconPath(maps)).inode != icon.inode, iconChanges);
    QCOMPARE(stamp(settingsPath(maps)).inode != setting.inode, settingChanges);
    QCOMPARE(read(desktopPath(maps)), entryText(changed));
    QCOMPARE(read(iconPath(maps)), changed.icon);
    QCOMPARE(read(settingsPath(maps)),
        QByteArray(settingText).replace("\"1\"", '"' + changed.packageVersion.toUtf8() + '"'));
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory).size(), 1);
}

void TestDesktopManagerUpdate::oldEntryIsBroughtUpToDate()
{
    const ApkLauncher maps = launcher("a.maps");
    DesktopManager manager{ApkConfig()};
    write(desktopPath(maps),
        "# comment\n[Desktop Entry]\nVersion=0.9\nType=Link\nName=Old\nName[de]=Alt\n"
        "NoDisplay=true\nX-lumd-apkfile=/x\nX-lumd-packageName=x\nX-Tesk-Single-Instance=yes\n"
        "X-Tesk-Application-Type=x\nExec=x\nIcon=x\nCategories=Game\nX-Other=1\n");
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    manager.onCreateLauncher(maps);
    QCOMPARE(read(desktopPath(maps)),
        entryText(maps,
            {{QStringLiteral("Categories"), QStringLiteral("Game")},
                {QStringLiteral("Name[de]"), QStringLiteral("Alt")},
                {QStringLiteral("X-Other"), QStringLiteral("1")}}));
    QCOMPARE(installed.size(), 0);
}

void TestDesktopManagerUpdate::iconThatWasLostIsWrittenAgain()
{
    const ApkLauncher maps = launcher("a.maps");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(maps);
    QVERIFY(QFile::remove(iconPath(maps)));
    QVERIFY(QFile::remove(settingsPath(maps)));
    const Stamp entry = stamp(desktopPath(maps));
    manager.onCreateLauncher(maps);
    QCOMPARE(read(iconPath(maps)), maps.icon);
    QVERIFY(QFile::exists(settingsPath(maps)));
    QVERIFY(stamp(desktopPath(maps)) == entry);
}

void TestDesktopManagerUpdate::iconOfANewEntryIsAlwaysWritten()
{
    const ApkLauncher maps = launcher("a.maps");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(maps);
    const Stamp icon = stamp(iconPath(maps));
    QVERIFY(QFile::remove(desktopPath(maps)));
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    manager.onCreateLauncher(maps);
    QVERIFY(stamp(iconPath(maps)).inode != icon.inode);
    QCOMPARE(installed.size(), 1);
}

LUM_TEST_MAIN(TestDesktopManagerUpdate)
#include "tst_desktopmanagerupdate.moc"
