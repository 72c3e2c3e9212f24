// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>

using namespace LauncherFiles;

class TestDesktopManagerBadInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyIconIsNeverWritten();
    void emptyIconLeavesTheOldOne();
    void iconOfTenMegabytesIsWrittenOnce();
    void namesComeOutLiterally_data();
    void namesComeOutLiterally();
    void slashInANameIsAFolderThatIsMissing();
    void slashInANameReachesAFolderThatIsThere();
    void zeroCharacterCutsTheNamesOfTheFiles();
    void lineFeedInACaptionAddsAKey();
    void lineFeedInAPackageAddsAKey();
};

void TestDesktopManagerBadInput::emptyIconIsNeverWritten()
{
    ApkLauncher app = launcher("a");
    app.icon.clear();
    DesktopManager manager{ApkConfig()};
    for (int i = 0; i < 2; ++i) {
        const LogCapture log;
        manager.onCreateLauncher(app);
        QCOMPARE(warnings(log), QStringList(iconFailure(app)));
        QCOMPARE(read(desktopPath(app)), entryText(app));
        QCOMPARE(listing(icons), QStringList());
    }
}

void TestDesktopManagerBadInput::emptyIconLeavesTheOldOne()
{
    ApkLauncher app = launcher("a");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    const Stamp before = stamp(iconPath(app));
    app.icon.clear();
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log), QStringList(iconFailure(app)));
    QCOMPARE(read(iconPath(app)), QByteArray("icon"));
    QVERIFY(stamp(iconPath(app)) == before);
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerBadInput::iconOfTenMegabytesIsWrittenOnce()
{
    ApkLauncher app = launcher("a");
    app.icon = QByteArray(10 << 20, 'i');
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QVERIFY(read(iconPath(app)) == app.icon);
    const Stamp before = stamp(iconPath(app));
    manager.onCreateLauncher(app);
    QVERIFY(stamp(iconPath(app)) == before);
    app.icon[app.icon.size() - 1] = 'x';
    manager.onCreateLauncher(app);
    QVERIFY(read(iconPath(app)) == app.icon);
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerBadInput::namesComeOutLiterally_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("caption");
    const auto row = [](const char *name, const char *package, const char *cls,
                         const char *caption) {
        QTest::newRow(name) << QString::fromUtf8(package) << QString::fromUtf8(cls)
                            << QString::fromUtf8(caption);
    };

    row("placeholders", "%1", "%2", "%3");
    row("placeholders swapped", "%3%2%1", "%1%1", "%1 %2 %L1 %99");
    row("percent signs", "%%", "%", "100 %");
    row("dots", "..", "...", "..");
    row("not ASCII", "\xc3\xa4.\xe6\xbc\xa2", "\xf0\x9f\x98\x80", "\xc3\x9f \xd8\xb9");
    row("blanks and quotes", " a b ", "\"c\"", " 'd' ");
    row("glob characters", "*", "?[a]", "*");
    row("empty package and class", "", "", "x");
    row("suffix in a name", "adesktop", "png", "x");
    row("longest name", QByteArray(100, 'p').constData(), QByteArray(100, 'c').constData(), "x");
}

void TestDesktopManagerBadInput::namesComeOutLiterally()
{
    QFETCH(QString, package);
    QFETCH(QString, className);
    QFETCH(QString, caption);

    ApkLauncher app = launcher(package.toUtf8().constData(), className.toUtf8().constData());
    app.caption = caption;
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app));
    QCOMPARE(allFiles(), filesOf(app));
    const Stamp before = stamp(desktopPath(app));
    manager.onCreateLauncher(app);
    QVERIFY(stamp(desktopPath(app)) == before);
    QCOMPARE(manager.packageForDesktopFile(desktopPath(app)), package);
    QCOMPARE(manager.appName(package), caption);
    manager.onLaunchersComplete();
    QCOMPARE(allFiles(), filesOf(app));
    manager.onRemovePackage(package);
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory), QStringList());
    QCOMPARE(warnings(log), QStringList());
}

void TestDesktopManagerBadInput::slashInANameIsAFolderThatIsMissing()
{
    // Dots are escaped, so that no name leads out of the folder.
    ApkLauncher app = launcher("../../x", "y");
    const QString name = QStringLiteral("lumd_launcher___/__/x-y");
    DesktopManager manager{ApkConfig()};
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log),
        QStringList({
            pathLine("warning",
                "Unable to write icon:", QLatin1String(icons) + name + QLatin1String(".png")),
            pathLine("warning", "Could not open",
                QLatin1String(applications) + name + QLatin1String(".desktop"))
                + QLatin1String(" for writing"),
        }));
    QCOMPARE(installed.size(), 1);
    QCOMPARE(listing(applications), QStringList());
    QCOMPARE(listing(icons), QStringList());
    QCOMPARE(listing(settings), QStringList(QStringLiteral("x-y.json")));
}

void TestDesktopManagerBadInput::slashInANameReachesAFolderThatIsThere()
{
    makeDirectory(QLatin1String(applications) + QLatin1String("lumd_launcher_a"));
    makeDirectory(QLatin1String(icons) + QLatin1String("lumd_launcher_a"));
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    manager.onCreateLauncher(launcher("a/b", "c/d"));
    QCOMPARE(warnings(log).size(), 2);
    manager.onCreateLauncher(launcher("a/b", "d"));
    QCOMPARE(warnings(log).size(), 2);
    QCOMPARE(listing(QLatin1String(applications) + QLatin1String("lumd_launcher_a")),
        QStringList(QStringLiteral("b-d.desktop")));
    QCOMPARE(manager.desktopFiles(), QStringList());
}

// The C library ends a name there, so that the files lack what follows and are found by no
// scan. Nothing of them is half-written.
void TestDesktopManagerBadInput::zeroCharacterCutsTheNamesOfTheFiles()
{
    ApkLauncher app = launcher("a", "c");
    app.packageName.append(QChar(0));
    DesktopManager manager{ApkConfig()};
    for (int i = 0; i < 2; ++i) {
        const LogCapture log;
        manager.onCreateLauncher(app);
        for (const char *directory : {applications, icons, settings})
            QCOMPARE(listing(directory), QStringList(QStringLiteral("lumd_launcher_a")));
        QCOMPARE(read(QStringLiteral("/var/lib/lumd/lumd_launcher_a")), app.icon);
    }
    manager.onLaunchersComplete();
    manager.onRemovePackage(app.packageName);
    QCOMPARE(manager.desktopFiles(), QStringList());
}

// Nothing is escaped in the entry, so that a caption can add keys that are not set later.
// Such an entry reads back in two keys and is rewritten each time.
void TestDesktopManagerBadInput::lineFeedInACaptionAddsAKey()
{
    ApkLauncher app = launcher("a");
    app.caption = QStringLiteral("Maps\nDBusActivatable=true\nExec=evil\nno key");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    const QByteArray first = entryText(app);
    QVERIFY(first.contains("\nName=Maps\nDBusActivatable=true\nExec=evil\nno key\nType="));
    QCOMPARE(read(desktopPath(app)), first);
    QCOMPARE(manager.appName(app.packageName), QStringLiteral("Maps"));

    const QMap<QString, QString> added{{QStringLiteral("DBusActivatable"), QStringLiteral("true")}};
    for (int i = 0; i < 2; ++i) {
        const Stamp before = stamp(desktopPath(app));
        manager.onCreateLauncher(app);
        QCOMPARE(read(desktopPath(app)), entryText(app, added));
        QVERIFY(stamp(desktopPath(app)).inode != before.inode);
    }

    // The key stays when the caption is as it should be.
    app.caption = QStringLiteral("Maps");
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app, added));
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerBadInput::lineFeedInAPackageAddsAKey()
{
    const ApkLauncher app = launcher("a\nHidden=true\nb", "c\nd");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app));
    QCOMPARE(allFiles(), filesOf(app));
    // The package reads back up to the line feed.
    QCOMPARE(manager.packages(), QStringList(QStringLiteral("a")));
    manager.onLaunchersComplete();
    QCOMPARE(allFiles(), filesOf(app));
    manager.onRemovePackage(app.packageName);
    QCOMPARE(allFiles(), filesOf(app));
    manager.onRemovePackage(QStringLiteral("a"));
    QCOMPARE(listing(applications), QStringList());
}

LUM_TEST_MAIN(TestDesktopManagerBadInput)
#include "tst_desktopmanagerbadinput.moc"
