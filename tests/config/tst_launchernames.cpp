// SPDX-License-Identifier: BSD-3-Clause
#include "config/launchernames.h"

#include "tests/support/testmain.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

bool touch(const QString &path)
{
    return QFile(path).open(QIODevice::WriteOnly);
}

} // namespace

class TestLauncherNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothNamesAreEscapedApart_data();
    void bothNamesAreEscapedApart();
    void apkIsToldByItsName_data();
    void apkIsToldByItsName();
    void directoryIsAnApkWhenItHoldsABaseApk();
    void iconPathReplacesFolderAndSuffixEverywhere_data();
    void iconPathReplacesFolderAndSuffixEverywhere();
    void settingsEntryTakesTheCompleteBaseName_data();
    void settingsEntryTakesTheCompleteBaseName();
    void unversionedApkLosesItsNumber_data();
    void unversionedApkLosesItsNumber();
    void unversionedApkExistsInItsDirectory();
    void nameIsPutIntoAFolder_data();
    void nameIsPutIntoAFolder();
};

void TestLauncherNames::bothNamesAreEscapedApart_data()
{
    QTest::addColumn<QString>("packageName");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("escaped");
    const auto row = [](const char *package, const char *cls, const char *escaped) {
        QTest::addRow("%s %s", package, cls)
            << QString::fromUtf8(package) << QString::fromUtf8(cls) << QString::fromUtf8(escaped);
    };

    row("com.foo_bar", "com.foo_bar.Main", "com_foo__bar-com_foo__bar_Main");
    row("a.b", "c", "a_b-c");
    row("a_b", "c", "a__b-c");
    row("a._b", "c", "a___b-c");
    row("a_.b", "c", "a___b-c");
    row("__", "..", "____-__");
    row("a-b", "c-d", "a-b-c-d");
    row("", "", "-");
    row("..", "/../x", "__-/__/x");
    row("%1", "%2", "%1-%2");
    row("\xc3\xa4", "\xe6\xbc\xa2", "\xc3\xa4-\xe6\xbc\xa2");
}

void TestLauncherNames::bothNamesAreEscapedApart()
{
    QFETCH(QString, packageName);
    QFETCH(QString, className);
    QFETCH(QString, escaped);
    QCOMPARE(escapeLauncherName(packageName, className), escaped);
}

void TestLauncherNames::apkIsToldByItsName_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isApk");

    QTest::newRow("apk") << QStringLiteral("/x/a.apk") << true;
    QTest::newRow("upper case") << QStringLiteral("a.APK") << true;
    QTest::newRow("mixed case") << QStringLiteral("a.aPk") << true;
    QTest::newRow("suffix alone") << QStringLiteral(".apk") << true;
    QTest::newRow("no dot") << QStringLiteral("aapk") << false;
    QTest::newRow("more behind") << QStringLiteral("a.apk.old") << false;
    QTest::newRow("desktop entry") << QStringLiteral("a.desktop") << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("missing") << QStringLiteral("/nowhere") << false;
}

void TestLauncherNames::apkIsToldByItsName()
{
    QFETCH(QString, path);
    QFETCH(bool, isApk);
    QCOMPARE(isApkPath(path), isApk);
}

void TestLauncherNames::directoryIsAnApkWhenItHoldsABaseApk()
{
    const QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(!isApkPath(dir.path()));
    QVERIFY(touch(dir.filePath(QStringLiteral("Base.apk"))));
    QVERIFY(!isApkPath(dir.path()));
    QVERIFY(touch(dir.filePath(QStringLiteral("base.apk"))));
    QVERIFY(isApkPath(dir.path()));
    QVERIFY(isApkPath(dir.path() + QLatin1Char('/')));

    const QString file = dir.filePath(QStringLiteral("file"));
    QVERIFY(touch(file));
    QVERIFY(!isApkPath(file));

    QVERIFY(QDir::setCurrent(dir.path()));
    QVERIFY(QDir().mkdir(QStringLiteral("./:a")));
    QVERIFY(!isApkPath(QStringLiteral(":a")));
    QVERIFY(touch(QStringLiteral("./:a/base.apk")));
    QVERIFY(isApkPath(QStringLiteral(":a")));
}

void TestLauncherNames::iconPathReplacesFolderAndSuffixEverywhere_data()
{
    QTest::addColumn<QString>("desktopPath");
    QTest::addColumn<QString>("iconPath");
    const auto row = [](const char *desktopPath, const char *iconPath) {
        QTest::newRow(desktopPath) << QString::fromUtf8(desktopPath) << QString::fromUtf8(iconPath);
    };

    row("/usr/share/applications/a.desktop", "/var/lib/lumd/a.png");
    row("/usr/share/applications/a.desktop.desktop", "/var/lib/lumd/a.png.png");
    row("/usr/share/applications/a.desktopb.desktop", "/var/lib/lumd/a.pngb.png");
    row("/x/usr/share/applications/a.desktop", "/x/var/lib/lumd/a.png");
    row("/usr/share/applications/usr/share/applications/a",
        "/var/lib/lumd/usr/share/applications/a");
    row("/usr/share/applications//usr/share/applications/a", "/var/lib/lumd//var/lib/lumd/a");
    row("/Usr/share/applications/a.Desktop", "/Usr/share/applications/a.Desktop");
    row("", "");
}

void TestLauncherNames::iconPathReplacesFolderAndSuffixEverywhere()
{
    QFETCH(QString, desktopPath);
    QFETCH(QString, iconPath);
    QCOMPARE(iconPathFor(desktopPath), iconPath);
}

void TestLauncherNames::settingsEntryTakesTheCompleteBaseName_data()
{
    QTest::addColumn<QString>("desktopPath");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *desktopPath, const char *name) {
        QTest::newRow(desktopPath) << QString::fromUtf8(desktopPath) << QString::fromUtf8(name);
    };

    row("/usr/share/applications/a.desktop", "a");
    row("/elsewhere/a.b.desktop", "a.b");
    row("a.png", "a");
    row("a", "a");
    row(".desktop", "");
    row("/x/", "");
    row(":a.b.desktop", ":a.b");
    row("/x/:a.desktop", ":a");
    row("/x/a:b.desktop", "a:b");
}

void TestLauncherNames::settingsEntryTakesTheCompleteBaseName()
{
    QFETCH(QString, desktopPath);
    QFETCH(QString, name);
    QCOMPARE(settingsEntryPathFor(desktopPath),
        QStringLiteral("/usr/share/tovra-settings/entries/%1.json").arg(name));
}

void TestLauncherNames::unversionedApkLosesItsNumber_data()
{
    QTest::addColumn<QString>("apkPath");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *apkPath, const char *name) {
        QTest::newRow(apkPath) << QString::fromUtf8(apkPath) << QString::fromUtf8(name);
    };

    row("foo-12.apk", "foo.apk");
    row("foo.apk", "foo.apk");
    row("foo-12.APK", "foo-12.APK");
    row("/some/where-3.apk/foo-1.apk", "foo.apk");
    row("foo-1-2.apk", "foo-1.apk");
    row("foo-12.apk-3.apk", "foo.apk.apk");
    row("foo-12.apk.old", "foo.apk.old");
    row("foo-.apk", "foo-.apk");
    row("foo-1a.apk", "foo-1a.apk");
    row("foo-12xapk", "foo-12xapk");
    row("foo12.apk", "foo12.apk");
    row("-1.apk", ".apk");
    row(":foo-12.apk", ":foo.apk");
    row("/x/:foo.apk", ":foo.apk");
    row(":/foo.apk", "foo.apk");
    row(":-1.apk", ":.apk");
}

void TestLauncherNames::unversionedApkLosesItsNumber()
{
    QFETCH(QString, apkPath);
    QFETCH(QString, name);

    QCOMPARE(unversionedApkPath(QDir(QStringLiteral("/packaged/dir")), apkPath),
        QStringLiteral("/packaged/dir/") + name);
}

void TestLauncherNames::unversionedApkExistsInItsDirectory()
{
    const QTemporaryDir temporary;
    QVERIFY(temporary.isValid());
    const QDir dir(temporary.path());
    const QString versioned = QStringLiteral("/elsewhere/foo-12.apk");

    QVERIFY(!unversionedApkExists(dir, versioned));
    QVERIFY(touch(dir.filePath(QStringLiteral("foo-12.apk"))));
    QVERIFY(!unversionedApkExists(dir, versioned));
    QVERIFY(touch(dir.filePath(QStringLiteral("foo.apk"))));
    QVERIFY(unversionedApkExists(dir, versioned));
    QVERIFY(unversionedApkExists(dir, QStringLiteral("foo.apk")));
    QVERIFY(!unversionedApkExists(dir, QStringLiteral("bar.apk")));

    const QString colon = QStringLiteral("/elsewhere/:foo-12.apk");
    QVERIFY(!unversionedApkExists(dir, colon));
    QVERIFY(touch(dir.path() + QStringLiteral("/:foo.apk")));
    QVERIFY(unversionedApkExists(dir, colon));
}

void TestLauncherNames::nameIsPutIntoAFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    const auto row = [](const char *folder, const char *name, const char *path) {
        QTest::addRow("%s %s", folder, name)
            << QString::fromUtf8(folder) << QString::fromUtf8(name) << QString::fromUtf8(path);
    };
    row("/a/b", "c", "/a/b/c");
    row("/a/b/", "c", "/a/b/c");
    row("/a//b", "c", "/a//b/c");
    row("/", "c", "/c");
    row("/a", "", "/a");
    row("/a", ".", "/a/.");
    row("/a", "b:", "/a/b:");
    row("a", "c", "a/c");
    row("/a/b", ":c", "/a/b/:c");
    row("/a//b/", ":c", "/a//b/:c");
    row("/", ":c", "/:c");
    row("/a", ":", "/a/:");
    row("a", ":c", "a/:c");
}

void TestLauncherNames::nameIsPutIntoAFolder()
{
    QFETCH(QString, folder);
    QFETCH(QString, name);
    QFETCH(QString, path);
    QCOMPARE(pathInFolder(QDir(folder), name), path);
}

LUM_TEST_MAIN(TestLauncherNames)
#include "tst_launchernames.moc"
