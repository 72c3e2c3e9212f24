// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QFile>
#include <QSignalSpy>

using namespace LauncherFiles;

class TestDesktopManagerCreation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folderOfIconsIsMade();
    void pathIsMadeOfTheEscapedNames();
    void newLauncherMakesThreeFiles();
    void settingsEntryAndSignalComeBeforeTheDesktopEntry();
    void failuresComeInTheOrderOfTheFiles();
    void launcherWithoutCaptionIsNotMade_data();
    void launcherWithoutCaptionIsNotMade();
    void launchersOfOnePackageHaveFilesOfTheirOwn();
    void dataRootIsThatOfTheConstruction();
    void iconIsNotKept();
};

void TestDesktopManagerCreation::folderOfIconsIsMade()
{
    QVERIFY(!QFile::exists(QLatin1String(icons)));
    const LogCapture log;
    const DesktopManager manager{ApkConfig()};
    QVERIFY(QFile::exists(QLatin1String(icons)));
    QVERIFY(!manager.parent());
    QCOMPARE(log.lines(), QStringList());
    const DesktopManager second{ApkConfig()};
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerCreation::pathIsMadeOfTheEscapedNames()
{
    const DesktopManager manager{ApkConfig()};
    QCOMPARE(manager.desktopFilePath(launcher("com.foo_bar", "com.foo_bar.Main")),
        QStringLiteral("/usr/share/applications/"
                       "lumd_launcher_com_foo__bar-com_foo__bar_Main.desktop"));
    QCOMPARE(manager.desktopFilePath(launcher("%1", "%2%3")),
        QStringLiteral("/usr/share/applications/lumd_launcher_%1-%2%3.desktop"));
    QCOMPARE(manager.desktopFilePath({}),
        QStringLiteral("/usr/share/applications/lumd_launcher_-.desktop"));
}

void TestDesktopManagerCreation::newLauncherMakesThreeFiles()
{
    DesktopManager manager{ApkConfig()};
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const QSignalSpy changed(&manager, &DesktopManager::launcherChanged);
    const LogCapture log;
    const ApkLauncher maps{QStringLiteral("Maps = M\u00e4p"), QByteArray("\x89PNG\0", 5),
        QStringLiteral("com.foo"), QStringLiteral("com.foo.Main"), QStringLiteral("1.2.3")};
    manager.onCreateLauncher(maps);

    QCOMPARE(read(QStringLiteral("/usr/share/applications/"
                                 "lumd_launcher_com_foo-com_foo_Main.desktop")),
        QByteArray("[Desktop Entry]\n"
                   "Exec=lumd-launcher com.foo.apk com.foo/com.foo.Main\n"
                   "Icon=/var/lib/lumd/lumd_launcher_com_foo-com_foo_Main.png\n"
                   "Name=Maps = M\xc3\xa4p\n"
                   "Type=Application\n"
                   "Version=1.0\n"
                   "X-Tesk-Application-Type=no-invoker\n"
                   "X-lumd-apkfile=/home/.android/data/app//com.foo.apk\n"
                   "X-lumd-packageName=com.foo\n"));
    QCOMPARE(read(QStringLiteral("/var/lib/lumd/lumd_launcher_com_foo-com_foo_Main.png")),
        QByteArray("\x89PNG\0", 5));
    QCOMPARE(read(QStringLiteral("/usr/share/tovra-settings/entries/"
                                 "lumd_launcher_com_foo-com_foo_Main.json")),
        QByteArray("{\n"
                   "    \"entries\": [\n"
                   "        {\n"
                   "            \"params\": {\n"
                   "                \"properties\": {\n"
                   "                    \"packageName\": \"com.foo\",\n"
                   "                    \"packageVersion\": \"1.2.3\"\n"
                   "                },\n"
                   "                \"source\": \"/usr/share/tovra-settings/pages/"
                   "apk-configuration/apkConfigurationPage.qml\"\n"
                   "            },\n"
                   "            \"path\": \"applications/"
                   "lumd_launcher_com_foo-com_foo_Main.desktop\",\n"
                   "            \"type\": \"page\"\n"
                   "        }\n"
                   "    ]\n"
                   "}\n"));
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory).size(), 1);
    QCOMPARE(installed.size(), 1);
    QCOMPARE(installed.first().first().value<ApkLauncher>().caption, maps.caption);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(),
        QVariantList({desktopPath(maps), maps.packageName, maps.caption, iconPath(maps)}));
    QCOMPARE(installed.first().first().value<ApkLauncher>().icon, maps.icon);
    QCOMPARE(log.lines(), rewrittenLines(maps));
}

void TestDesktopManagerCreation::settingsEntryAndSignalComeBeforeTheDesktopEntry()
{
    DesktopManager manager{ApkConfig()};
    const ApkLauncher maps = launcher("a.maps");
    const LogCapture log;
    int emissions = 0;
    connect(&manager, &DesktopManager::newApplicationInstalled, this, [&] {
        ++emissions;
        QCOMPARE(read(iconPath(maps)), maps.icon);
        QVERIFY(read(settingsPath(maps)).endsWith("}\n"));
        QCOMPARE(listing(applications), QStringList());
        QCOMPARE(log.lines(), announcedLines(maps));
    });
    manager.onCreateLauncher(maps);
    QCOMPARE(emissions, 1);
    QCOMPARE(read(desktopPath(maps)), entryText(maps));
}

void TestDesktopManagerCreation::failuresComeInTheOrderOfTheFiles()
{
    DesktopManager manager{ApkConfig()};
    for (const char *directory : {applications, icons, settings})
        TestNamespace::setReadOnly(QLatin1String(directory), true);
    const ApkLauncher maps = launcher("a.maps");
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const LogCapture log;
    manager.onCreateLauncher(maps);
    QCOMPARE(log.lines(),
        announcedLines(maps) << pathLine("warning", "Unable to write icon:", iconPath(maps))
                             << pathLine("warning", "Unable to write json file", settingsPath(maps))
                + QLatin1String(" for writing")
                             << pathLine("debug", "Updating:", desktopPath(maps))
                             << pathLine("warning", "Could not open", desktopPath(maps))
                + QLatin1String(" for writing"));
    QCOMPARE(installed.size(), 1);
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory), QStringList());
}

void TestDesktopManagerCreation::launcherWithoutCaptionIsNotMade_data()
{
    QTest::addColumn<QString>("caption");

    QTest::newRow("null") << QString();
    QTest::newRow("empty") << QStringLiteral("");
}

void TestDesktopManagerCreation::launcherWithoutCaptionIsNotMade()
{
    QFETCH(QString, caption);

    ApkLauncher nameless = launcher("a.maps");
    nameless.caption = caption;
    DesktopManager manager{ApkConfig()};
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const LogCapture log;
    manager.onCreateLauncher(nameless);
    QCOMPARE(log.lines(),
        QStringList({
            pathLine("debug", "onCreateLauncher:", desktopPath(nameless)),
            pathLine("warning", "Not creating launcher for ", desktopPath(nameless))
                + QLatin1String(" , as it has no caption"),
        }));
    QCOMPARE(installed.size(), 0);
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory), QStringList());
}

void TestDesktopManagerCreation::launchersOfOnePackageHaveFilesOfTheirOwn()
{
    DesktopManager manager{ApkConfig()};
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    for (const char *className : {"Main", "Other"})
        manager.onCreateLauncher(launcher("a.maps", className));
    QCOMPARE(installed.size(), 2);
    for (const char *directory : {applications, icons, settings})
        QCOMPARE(listing(directory).size(), 2);
    QCOMPARE(
        read(desktopPath(launcher("a.maps", "Other"))), entryText(launcher("a.maps", "Other")));
}

void TestDesktopManagerCreation::dataRootIsThatOfTheConstruction()
{
    qputenv("ANDROID_DATA_ROOT", "/data/%1");
    DesktopManager manager{ApkConfig()};
    qputenv("ANDROID_DATA_ROOT", "/other");
    const ApkLauncher maps = launcher("a.maps");
    manager.onCreateLauncher(maps);
    QCOMPARE(read(desktopPath(maps)), entryText(maps).replace("/home/.android/", "/data/%1/"));
}

// Whoever kept it would share its bytes.
void TestDesktopManagerCreation::iconIsNotKept()
{
    DesktopManager manager{ApkConfig()};
    ApkLauncher maps = launcher("com.foo");
    maps.icon = QByteArray(1000, 'i');
    manager.onCreateLauncher(maps);
    QVERIFY(maps.icon.isDetached());
    manager.onCreateLauncher(maps);
    QVERIFY(maps.icon.isDetached());
    QCOMPARE(read(manager.desktopFilePath(maps)), entryText(maps));
}

LUM_TEST_MAIN(TestDesktopManagerCreation)
#include "tst_desktopmanagercreation.moc"
