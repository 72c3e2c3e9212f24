// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/leftovers.h"

#include "launcher/desktopmanager.h"
#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

using namespace LauncherFiles;

namespace {

// One of each kind, as a process leaves them that is killed while it replaces a file.
QStringList leaveTemporaries()
{
    const QStringList paths{
        QLatin1String(applications) + QLatin1String("lumd_launcher_a_b-Main.desktop.AbCdEf"),
        QLatin1String(icons) + QLatin1String("lumd_launcher_a_b-Main.png.zZzZzZ"),
        QLatin1String(settings) + QLatin1String("lumd_launcher_a_b-Main.json.qWeRtY"),
    };
    for (const QString &path : paths)
        write(path, "half a fi");
    return paths;
}

QStringList deletionLines(const QStringList &paths)
{
    QStringList lines;
    for (const QString &path : paths)
        lines.append(pathLine("debug", "Deleting:", path));
    return lines;
}

} // namespace

class TestLeftovers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeDirectory(QLatin1String(icons)); }
    void cleanup();

    void temporariesOfAllThreeFoldersGo();
    void everyNameOfATemporaryGoes_data();
    void everyNameOfATemporaryGoes();
    void otherNamesStay_data();
    void otherNamesStay();
    void otherKindsOfFilesStay();
    void foldersThatAreMissingArePassedOver();
    void failureIsAWarningAndTheOthersGo();
    void firstCompleteListSweepsBehindItsDeletions();
    void laterCompleteListsDoNotSweep();
};

void TestLeftovers::cleanup()
{
    const QStringList paths = allFiles();
    for (const QString &path : paths)
        QFile::remove(path);
}

void TestLeftovers::temporariesOfAllThreeFoldersGo()
{
    const QStringList paths = leaveTemporaries();
    const LogCapture log;
    removeLeftovers();
    QCOMPARE(allFiles(), QStringList());
    QCOMPARE(log.lines(), deletionLines(paths));
}

void TestLeftovers::everyNameOfATemporaryGoes_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"lumd_launcher_a-b.desktop.abcdef", "lumd_launcher_a-b.png.ABCDEF",
             "lumd_launcher_a-b.json.a1B2c3", "lumd_launcher_.desktop.abcdef",
             "lumd_launcher_x\ny.desktop.abcdef", "lumd_launcher_\u00e4.desktop.abcdef",
             "lumd_launcher_a.desktop.abcdef.desktop.abcdef"})
        QTest::newRow(name) << QString::fromUtf8(name);
}

void TestLeftovers::everyNameOfATemporaryGoes()
{
    QFETCH(QString, name);

    write(QLatin1String(applications) + name, {});
    const LogCapture log;
    removeLeftovers();
    QCOMPARE(listing(applications), QStringList());
    const QString shown = name.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    QCOMPARE(log.lines(), deletionLines({QLatin1String(applications) + shown}));
}

void TestLeftovers::otherNamesStay_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"lumd_launcher_a-b.desktop", "lumd_launcher_a-b.desktop.abcde",
             "lumd_launcher_a-b.desktop.abcdefg", "lumd_launcher_a-b.desktop.abc.ef",
             "lumd_launcher_a-b.desktop.abcde~", "lumd_launcher_a-b.desktop_abcdef",
             "lumd_launcher_a-b.Desktop.abcdef", "lumd_launcher_a-b.svg.abcdef",
             "lumd_launcher_a-b.abcdef", "Lumd_launcher_a-b.desktop.abcdef",
             "xlumd_launcher_a-b.desktop.abcdef", ".lumd_launcher_a-b.desktop.abcdef",
             "lumd_launcher.desktop.abcdef", "firefox.desktop.abcdef",
             "lumd_launcher_a-b.desktop.abcdef\n", "lumd_launcher_a-b.desktop.abcd\u00e4f"})
        QTest::newRow(name) << QString::fromUtf8(name);
}

void TestLeftovers::otherNamesStay()
{
    QFETCH(QString, name);

    for (const char *folder : {applications, icons, settings})
        write(QLatin1String(folder) + name, "other");
    const LogCapture log;
    removeLeftovers();
    for (const char *folder : {applications, icons, settings})
        QCOMPARE(listing(folder), QStringList(name));
    QCOMPARE(log.lines(), QStringList());
}

void TestLeftovers::otherKindsOfFilesStay()
{
    const QString start = QLatin1String(applications) + QLatin1String("lumd_launcher_a.desktop.");
    const QString target = QStringLiteral("/run/target");
    write(target, "other");
    makeDirectory(start + QLatin1String("folder"));
    QVERIFY(QFile::link(target, start + QLatin1String("linked")));
    QVERIFY(QFile::link(QStringLiteral("/missing"), start + QLatin1String("broken")));
    QCOMPARE(mkfifo(qPrintable(start + QLatin1String("afifo1")), 0644), 0);
    const QStringList before = listing(applications);
    const LogCapture log;
    removeLeftovers();
    QCOMPARE(listing(applications), before);
    QCOMPARE(read(target), QByteArray("other"));
    QCOMPARE(log.lines(), QStringList());
}

void TestLeftovers::foldersThatAreMissingArePassedOver()
{
    QVERIFY(QDir().rmdir(QLatin1String(icons)));
    const LogCapture log;
    removeLeftovers();
    QCOMPARE(log.lines(), QStringList());
}

void TestLeftovers::failureIsAWarningAndTheOthersGo()
{
    const QStringList paths = leaveTemporaries();
    TestNamespace::setReadOnly(QLatin1String(icons), true);
    const LogCapture log;
    removeLeftovers();
    QCOMPARE(allFiles(), QStringList(paths.at(1)));
    QStringList expected = deletionLines(paths);
    expected.insert(2, pathLine("warning", "Could not remove:", paths.at(1)));
    QCOMPARE(log.lines(), expected);
}

void TestLeftovers::firstCompleteListSweepsBehindItsDeletions()
{
    const QStringList temporaries = leaveTemporaries();
    const ApkLauncher stale = launcher("b.stale");
    const ApkLauncher maps = launcher("a.maps");
    leaveBehind(stale);
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(maps);
    manager.onRemovePackage(QStringLiteral("x"));
    QVERIFY(QFile::exists(temporaries.first()));
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(log.lines(),
        deletionLines(QStringList({desktopPath(stale), iconPath(stale)}) + temporaries));
    QCOMPARE(allFiles(), filesOf(maps));
}

void TestLeftovers::laterCompleteListsDoNotSweep()
{
    DesktopManager manager{ApkConfig()};
    manager.onLaunchersComplete();
    leaveTemporaries();
    const QStringList before = allFiles();
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(allFiles(), before);
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestLeftovers)
#include "tst_leftovers.moc"
