// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QTextCodec>

using namespace LauncherFiles;

namespace {

const QString &fixedFile()
{
    static const QString path = QStringLiteral("/etc/lumd/app-blacklist");
    return path;
}

constexpr char variable[] = "LUMD_PACKAGE_BLACKLIST_PATH";

using Keys = QMap<QString, QString>;

Keys hiddenKey()
{
    return {{QStringLiteral("NoDisplay"), QStringLiteral("true")}};
}

} // namespace

class TestDesktopManagerBlacklist : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void linesOfTheFileAreHidden_data();
    void linesOfTheFileAreHidden();
    void bothSourcesCount();
    void sourcesAreUtf8WhateverTheLocale();
    void secondSourceAloneCounts();
    void packageInBothSourcesIsHiddenOnce();
    void sourceThatCannotBeReadIsPassedOverInSilence_data();
    void sourceThatCannotBeReadIsPassedOverInSilence();
    void listIsReadOnce();
    void hiddenLauncherIsRewrittenOnlyWhenTheListChanges();
};

void TestDesktopManagerBlacklist::cleanup()
{
    qunsetenv(variable);
    QFile::remove(fixedFile());
    const QStringList paths = allFiles();
    for (const QString &path : paths)
        QFile::remove(path);
}

void TestDesktopManagerBlacklist::linesOfTheFileAreHidden_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("package");
    QTest::addColumn<bool>("isHidden");
    const auto row = [](const char *name, const QByteArray &list, const char *package,
                         bool hidden) {
        QTest::newRow(name) << list << QString::fromUtf8(package) << hidden;
    };

    row("only line", "a.b\n", "a.b", true);
    row("no line feed at the end", "x\na.b", "a.b", true);
    row("between others", "x\na.b\ny\n", "a.b", true);
    row("not listed", "x\ny\n", "a.b", false);
    row("empty file", "", "a.b", false);
    row("blank lines before", "\n  \n\t\na.b\n", "a.b", true);
    row("white space around", " \t a.b \t\r\n", "a.b", true);
    row("white space within", "a. b\n", "a.b", false);
    row("other case", "A.b\n", "a.b", false);
    row("prefix", "a\n", "a.b", false);
    row("longer", "a.b.c\n", "a.b", false);
    row("pattern", "a.*\n*\n", "a.b", false);
    row("comment is a name", "#a.b\n", "a.b", false);
    row("name like a comment", "#a.b\n", "#a.b", true);
    row("comment behind a name", "a.b # hidden\n", "a.b", false);
    row("two on a line", "a.b x\n", "a.b", false);
    row("twice", "a.b\na.b\n", "a.b", true);
    row("not ASCII", "\xc3\xa4.b\n", "\xc3\xa4.b", true);
    row("behind bytes that are no UTF-8", QByteArray("\xff\xfe\xc3\n\x80 \0x\na.b\n", 13), "a.b",
        true);
    row("bytes that are no UTF-8 are no name",
        "\xff"
        "a.b\n",
        "a.b", false);
    row("very long line before", QByteArray(100000, 'x') + "\na.b\n", "a.b", true);
}

void TestDesktopManagerBlacklist::linesOfTheFileAreHidden()
{
    QFETCH(QByteArray, list);
    QFETCH(QString, package);
    QFETCH(bool, isHidden);

    write(fixedFile(), list);
    const LogCapture log(LogCapture::Level::Default);
    DesktopManager manager{ApkConfig()};
    const ApkLauncher app = launcher(package.toUtf8().constData());
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app, isHidden ? hiddenKey() : Keys()));
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerBlacklist::bothSourcesCount()
{
    write(fixedFile(), "fixed\n");
    const QString second = QStringLiteral("/run/l\u00efst");
    write(second, "second\n");
    qputenv(variable, second.toUtf8());
    DesktopManager manager{ApkConfig()};
    for (const char *package : {"fixed", "second"}) {
        manager.onCreateLauncher(launcher(package));
        QCOMPARE(read(desktopPath(launcher(package))), entryText(launcher(package), hiddenKey()));
    }
    manager.onCreateLauncher(launcher("third"));
    QCOMPARE(read(desktopPath(launcher("third"))), entryText(launcher("third")));
}

void TestDesktopManagerBlacklist::sourcesAreUtf8WhateverTheLocale()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    // The file itself has its name in the locale's encoding.
    write(QStringLiteral("/run/l\u00efst"), "\xc3\xa4.b\n");
    qputenv(variable, "/run/l\xc3\xafst");
    DesktopManager manager{ApkConfig()};
    const ApkLauncher app = launcher("\xc3\xa4.b");
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app, hiddenKey()));
}

void TestDesktopManagerBlacklist::secondSourceAloneCounts()
{
    write(QStringLiteral("/run/list"), "a.b\n");
    qputenv(variable, "/run/list");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(launcher("a.b"));
    QCOMPARE(read(desktopPath(launcher("a.b"))), entryText(launcher("a.b"), hiddenKey()));
}

void TestDesktopManagerBlacklist::packageInBothSourcesIsHiddenOnce()
{
    write(fixedFile(), "a.b\n");
    qputenv(variable, fixedFile().toUtf8());
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(launcher("a.b"));
    const Stamp before = stamp(desktopPath(launcher("a.b")));
    manager.onCreateLauncher(launcher("a.b"));
    QCOMPARE(read(desktopPath(launcher("a.b"))), entryText(launcher("a.b"), hiddenKey()));
    QVERIFY(stamp(desktopPath(launcher("a.b"))) == before);
}

void TestDesktopManagerBlacklist::sourceThatCannotBeReadIsPassedOverInSilence_data()
{
    QTest::addColumn<QByteArray>("path");

    QTest::newRow("missing") << QByteArray("/run/missing");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("directory") << QByteArray("/run");
    QTest::newRow("no UTF-8") << QByteArray("/run/\xff");
}

void TestDesktopManagerBlacklist::sourceThatCannotBeReadIsPassedOverInSilence()
{
    QFETCH(QByteArray, path);

    write(fixedFile(), "fixed\n");
    qputenv(variable, path);
    const LogCapture log(LogCapture::Level::Default);
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(launcher("fixed"));
    manager.onCreateLauncher(launcher("a.b"));
    QCOMPARE(read(desktopPath(launcher("fixed"))), entryText(launcher("fixed"), hiddenKey()));
    QCOMPARE(read(desktopPath(launcher("a.b"))), entryText(launcher("a.b")));
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerBlacklist::listIsReadOnce()
{
    write(fixedFile(), "a.b\n");
    DesktopManager manager{ApkConfig()};
    write(fixedFile(), "x.y\n");
    for (const char *package : {"a.b", "x.y"})
        manager.onCreateLauncher(launcher(package));
    QCOMPARE(read(desktopPath(launcher("a.b"))), entryText(launcher("a.b"), hiddenKey()));
    QCOMPARE(read(desktopPath(launcher("x.y"))), entryText(launcher("x.y")));
}

void TestDesktopManagerBlacklist::hiddenLauncherIsRewrittenOnlyWhenTheListChanges()
{
    const ApkLauncher app = launcher("a.b");
    write(fixedFile(), "a.b\n");
    DesktopManager(ApkConfig()).onCreateLauncher(app);
    const Stamp hidden = stamp(desktopPath(app));
    DesktopManager(ApkConfig()).onCreateLauncher(app);
    QVERIFY(stamp(desktopPath(app)) == hidden);

    QVERIFY(QFile::remove(fixedFile()));
    DesktopManager(ApkConfig()).onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app));
    const Stamp shown = stamp(desktopPath(app));
    DesktopManager(ApkConfig()).onCreateLauncher(app);
    QVERIFY(stamp(desktopPath(app)) == shown);

    write(fixedFile(), "a.b\n");
    DesktopManager(ApkConfig()).onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app, hiddenKey()));
}

LUM_TEST_MAIN(TestDesktopManagerBlacklist)
#include "tst_desktopmanagerblacklist.moc"
