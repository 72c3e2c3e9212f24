// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/packagenames.h"

#include "tests/support/testmain.h"

class TestPackageNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pathIsReducedToThePackage_data();
    void pathIsReducedToThePackage();
};

void TestPackageNames::pathIsReducedToThePackage_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("package");
    const auto row = [](const char *path, const char *package) {
        QTest::newRow(path) << QString::fromUtf8(path) << QString::fromUtf8(package);
    };
    row("com.foo.bar", "com.foo.bar");
    row("com.foo.bar.apk", "com.foo.bar");
    row("/a/b/com.foo.bar-12.apk", "com.foo.bar");
    row("b/com.foo.bar.apk", "com.foo.bar");
    row("/a-b/com.foo.apk", "com.foo");
    row("com.foo-bar", "com.foo");
    row("com.foo-1-2.apk", "com.foo");
    row("-12.apk", "");
    row("-", "");
    row("foo.APK", "foo.APK");
    row("foo.Apk", "foo.Apk");
    row("foo.apk.apk", "foo.apk");
    row("foo.apk.tmp", "foo.apk.tmp");
    row("foo.apk/", "");
    row("fooapk", "fooapk");
    row(".apk", "");
    row("/", "");
    row("", "");
    row("/usr/share/applications/a.desktop", "a.desktop");
    row("\u00e4.\u20ac-1.apk", "\u00e4.\u20ac");
}

void TestPackageNames::pathIsReducedToThePackage()
{
    QFETCH(QString, path);
    QFETCH(QString, package);
    QCOMPARE(packageNameFromFile(path), package);
}

LUM_TEST_MAIN(TestPackageNames)
#include "tst_packagenames.moc"
