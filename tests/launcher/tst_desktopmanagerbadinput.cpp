// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>
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
    void nameThatIsNoPlainTextIsRefused_data();
    void nameThatIsNoPlainTextIsRefused();
    void refusedLauncherIsNotTracked();
    void missingCaptionIsToldFirst();
    void controlCharactersInACaptionBecomeBlanks_data();
    void controlCharactersInACaptionBecomeBlanks();
    void entryWithRawControlCharactersIsRewrittenOnce();
    void keyThatACaptionOnceAddedStays();
    void controlCharactersInTheDataRootBecomeBlanks();
    void loneSurrogateIsWrittenOnce();
    void controlCharactersInAVersionAreEscaped();
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
    const QSignalSpy changed(&manager, &DesktopManager::launcherChanged);
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log), QStringList(iconFailure(app)));
    QCOMPARE(changed.size(), 0);
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

void TestDesktopManagerBadInput::nameThatIsNoPlainTextIsRefused_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("path"); // as it is logged

    const auto row = [](const char *name, const QString &package, const QString &className,
                         const char *path) {
        QTest::newRow(name) << package << className << QString::fromUtf8(path);
    };
    const QString a = QStringLiteral("a");
    row("slash in the class", QStringLiteral("com.evil"), QStringLiteral("com.evil.x/wlan"),
        "com_evil-com_evil_x/wlan");
    row("slash in the package", QStringLiteral("../../x"), a, "__/__/x-a");
    row("slash alone", a, QStringLiteral("/"), "a-/");
    row("line feed in the package", QStringLiteral("a\nHidden=true"), a, "a\\nHidden=true-a");
    row("carriage return in the class", a, QStringLiteral("b\r"), "a-b\\r");
    row("tabulator in the class", a, QStringLiteral("b\tc"), "a-b\\tc");
    row("zero in the package", a + QChar(0), a, "a\\u0000-a");
    row("delete in the class", a, QString(QChar(0x7f)), "a-\\u007F");
    row("next line in the class", a, QString(QChar(0x85)), "a-\\u0085");
    row("line separator in the package", QString(QChar(0x2028)), a, "\xe2\x80\xa8-a");
    row("paragraph separator in the class", a, QString(QChar(0x2029)), "a-\xe2\x80\xa9");
}

void TestDesktopManagerBadInput::nameThatIsNoPlainTextIsRefused()
{
    QFETCH(QString, package);
    QFETCH(QString, className);
    QFETCH(QString, path);

    ApkLauncher app = launcher("x");
    app.packageName = package;
    app.className = className;
    for (const char *folder : {applications, icons, settings})
        makeDirectory(QLatin1String(folder) + QLatin1String("lumd_launcher_a-"));
    write(QLatin1String(settings) + QLatin1String("wlan.json"), "the settings' own");
    const QStringList before = allFiles();
    DesktopManager manager{ApkConfig()};
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const LogCapture log;
    manager.onCreateLauncher(app);
    const QString logged = QLatin1String("\"/usr/share/applications/lumd_launcher_") + path
        + QLatin1String(".desktop\"");
    QCOMPARE(log.lines(),
        QStringList({
            logLine("debug", QLatin1String("onCreateLauncher: ") + logged),
            logLine("warning",
                QLatin1String("Not creating launcher for  ") + logged
                    + QLatin1String(
                        " , as its package or class holds a slash or a control character")),
        }));
    QCOMPARE(installed.size(), 0);
    QCOMPARE(allFiles(), before);
    for (const char *folder : {applications, icons, settings})
        QCOMPARE(listing(QLatin1String(folder) + QLatin1String("lumd_launcher_a-")), QStringList());
    QCOMPARE(read(QLatin1String(settings) + QLatin1String("wlan.json")),
        QByteArray("the settings' own"));
}

void TestDesktopManagerBadInput::refusedLauncherIsNotTracked()
{
    ApkLauncher app = launcher("a");
    app.className += QChar(0x85);
    DesktopManager manager{ApkConfig()};
    leaveBehind(app);
    manager.onCreateLauncher(app);
    QCOMPARE(allFiles(), filesOf(app));
    manager.onLaunchersComplete();
    QCOMPARE(allFiles(), QStringList());
}

void TestDesktopManagerBadInput::missingCaptionIsToldFirst()
{
    ApkLauncher app = launcher("a", "b/c");
    app.caption.clear();
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    manager.onCreateLauncher(app);
    QCOMPARE(warnings(log),
        QStringList(pathLine("warning", "Not creating launcher for ", desktopPath(app))
            + QLatin1String(" , as it has no caption")));
}

void TestDesktopManagerBadInput::controlCharactersInACaptionBecomeBlanks_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("name");

    QTest::newRow("line feed and keys") << QStringLiteral("Maps\nExec=evil\nDBusActivatable=true")
                                        << QStringLiteral("Maps Exec=evil DBusActivatable=true");
    QTest::newRow("carriage return") << QStringLiteral("Maps\r\n") << QStringLiteral("Maps  ");
    QTest::newRow("line ends of Unicode")
        << QStringLiteral("a\u0085b\u2028c\u2029d") << QStringLiteral("a b c d");
    QTest::newRow("escape sequence") << QStringLiteral("\u001b[2J") << QStringLiteral(" [2J");
    QTest::newRow("zero") << QStringLiteral("a") + QChar(0) << QStringLiteral("a ");
    QTest::newRow("nothing else") << QStringLiteral("\n") << QStringLiteral(" ");
}

void TestDesktopManagerBadInput::controlCharactersInACaptionBecomeBlanks()
{
    QFETCH(QString, caption);
    QFETCH(QString, name);

    ApkLauncher app = launcher("a");
    app.caption = caption;
    ApkLauncher cleaned = app;
    cleaned.caption = name;
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(cleaned));
    QCOMPARE(manager.appName(app.packageName), name);

    const Stamp before = stamp(desktopPath(app));
    const LogCapture log;
    manager.onCreateLauncher(app);
    QVERIFY(stamp(desktopPath(app)) == before);
    QCOMPARE(log.lines(), announcedLines(app));
}

void TestDesktopManagerBadInput::entryWithRawControlCharactersIsRewrittenOnce()
{
    ApkLauncher app = launcher("a");
    app.caption = QStringLiteral("My\tMaps\u0085\u2028");
    ApkLauncher cleaned = app;
    cleaned.caption = QStringLiteral("My Maps  ");
    // A key that is not lumd's stays as it is.
    const QMap<QString, QString> foreign{{QStringLiteral("X-a"), QStringLiteral("1\t2")}};
    write(desktopPath(app), entryText(app, foreign));
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(cleaned, foreign));
    const Stamp before = stamp(desktopPath(app));
    manager.onCreateLauncher(app);
    QVERIFY(stamp(desktopPath(app)) == before);
}

void TestDesktopManagerBadInput::keyThatACaptionOnceAddedStays()
{
    const ApkLauncher app = launcher("a");
    const QMap<QString, QString> added{{QStringLiteral("DBusActivatable"), QStringLiteral("true")}};
    write(desktopPath(app), entryText(app, added) + "Exec=evil\n");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app, added));
}

void TestDesktopManagerBadInput::controlCharactersInTheDataRootBecomeBlanks()
{
    qputenv("ANDROID_DATA_ROOT", "/da\nta\t");
    DesktopManager manager{ApkConfig()};
    qunsetenv("ANDROID_DATA_ROOT");
    const ApkLauncher app = launcher("a");
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app).replace("/home/.android/", "/da ta /"));
}

// It has no form in UTF-8, and what stands for it is what a later announcement is held against.
void TestDesktopManagerBadInput::loneSurrogateIsWrittenOnce()
{
    ApkLauncher app = launcher("a");
    app.caption = QStringLiteral("a") + QChar(0xd800) + QStringLiteral("b");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app));
    const Stamp before = stamp(desktopPath(app));
    manager.onCreateLauncher(app);
    QVERIFY(stamp(desktopPath(app)) == before);
}

void TestDesktopManagerBadInput::controlCharactersInAVersionAreEscaped()
{
    ApkLauncher app = launcher("a");
    app.packageVersion = QStringLiteral("1\n2");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QVERIFY(read(settingsPath(app)).contains("\"packageVersion\": \"1\\n2\"\n"));
}

LUM_TEST_MAIN(TestDesktopManagerBadInput)
#include "tst_desktopmanagerbadinput.moc"
