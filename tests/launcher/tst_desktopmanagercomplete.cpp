// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QFile>

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

class TestDesktopManagerComplete : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void announcementWithoutCaptionKeepsTheFormerRecord();
    void completeListRemovesWhatWasNotAnnounced();
    void completeListWithoutAnnouncementRemovesEverything();
    void completeListRemovesAnEntryThatLostItsCaption();
    void completeListRemovesInTheOrderOfThePackages();
    void completeListIsCheckedInFullEachTime();
    void foreignFilesAreLeftAlone();
    void readOnlyFolderKeepsItsFiles();
};

void TestDesktopManagerComplete::init()
{
    makeDirectory(QLatin1String(icons));
}

void TestDesktopManagerComplete::completeListRemovesWhatWasNotAnnounced()
{
    const ApkLauncher stale = launcher("b.stale");
    leaveBehind(launcher("a.maps"));
    leaveBehind(stale);
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(launcher("a.maps"));
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(log.lines(), deletionLines(stale));
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory).size(), 1);
    QVERIFY(QFile::exists(desktopPath(launcher("a.maps"))));
}

void TestDesktopManagerComplete::completeListWithoutAnnouncementRemovesEverything()
{
    for (const char *package : {"a", "b", "c"})
        leaveBehind(launcher(package));
    DesktopManager manager{ApkConfig()};
    manager.onLaunchersComplete();
    QCOMPARE(allFiles(), QStringList());
}

void TestDesktopManagerComplete::completeListRemovesAnEntryThatLostItsCaption()
{
    ApkLauncher app = launcher("a.maps");
    leaveBehind(app);
    app.caption.clear();
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QVERIFY(QFile::exists(desktopPath(app)));
    manager.onLaunchersComplete();
    QCOMPARE(allFiles(), QStringList());
}

void TestDesktopManagerComplete::completeListRemovesInTheOrderOfThePackages()
{
    // Keys by code unit, upper case first; the files of one key as the folder is listed.
    const ApkLauncher noKey = launcher("z");
    const QVector<ApkLauncher> ordered{noKey, launcher("B"), launcher("a", "One"),
        launcher("a", "two"), launcher("a", "Xyz"), launcher("b")};
    for (const ApkLauncher &app : ordered)
        leaveBehind(app);
    write(desktopPath(noKey), "[Desktop Entry]\n");
    QStringList expected{logLine("warning",
        QStringLiteral("File \"%1\" does not have key: \"X-lumd-packageName\"")
            .arg(desktopPath(noKey)))};
    for (const ApkLauncher &app : ordered)
        expected << deletionLines(app);

    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(log.lines(), expected);
    QCOMPARE(allFiles(), QStringList());
}

void TestDesktopManagerComplete::completeListIsCheckedInFullEachTime()
{
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(launcher("a.maps"));
    for (int i = 0; i < 2; ++i) {
        leaveBehind(launcher("b.stale"));
        manager.onLaunchersComplete();
        QVERIFY(!QFile::exists(desktopPath(launcher("b.stale"))));
        QVERIFY(QFile::exists(desktopPath(launcher("a.maps"))));
    }
}

void TestDesktopManagerComplete::announcementWithoutCaptionKeepsTheFormerRecord()
{
    ApkLauncher app = launcher("A");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    app.caption.clear();
    manager.onCreateLauncher(app);
    manager.onLaunchersComplete();
    QCOMPARE(read(desktopPath(app)), entryText(launcher("A")));
}

void TestDesktopManagerComplete::foreignFilesAreLeftAlone()
{
    const QStringList foreign{QStringLiteral("a.desktop"), QStringLiteral("lumd_launcher.desktop"),
        QStringLiteral("lumd_launcher_a.desktop.old"), QStringLiteral("lumd_launcher_a.png"),
        QStringLiteral("xlumd_launcher_a.desktop")};
    for (const QString &name : foreign)
        write(QLatin1String(applications) + name, "[Desktop Entry]\nX-lumd-packageName=a.maps\n");
    DesktopManager manager{ApkConfig()};
    manager.onRemovePackage(QStringLiteral("a.maps"));
    manager.onLaunchersComplete();
    QCOMPARE(listing(applications), foreign);
}

void TestDesktopManagerComplete::readOnlyFolderKeepsItsFiles()
{
    const ApkLauncher maps = launcher("a.maps");
    leaveBehind(maps);
    DesktopManager manager{ApkConfig()};
    for (const char *directory : {applications, icons, settings})
        TestNamespace::setReadOnly(QLatin1String(directory), true);
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(log.lines(),
        QStringList({
            deletionLines(maps).first(),
            couldNotRemove(desktopPath(maps)),
            deletionLines(maps).last(),
            couldNotRemove(iconPath(maps)),
            couldNotRemove(settingsPath(maps)),
        }));
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory).size(), 1);
}

LUM_TEST_MAIN(TestDesktopManagerComplete)
#include "tst_desktopmanagercomplete.moc"
