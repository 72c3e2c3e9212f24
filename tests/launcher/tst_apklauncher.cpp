// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/apklauncher.h"

#include "tests/support/testmain.h"

class TestApkLauncher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void packageAndClassAloneMakeTheIdentity_data();
    void packageAndClassAloneMakeTheIdentity();
    void newRecordIsNullThroughout();
    void copyIsIndependent();
};

void TestApkLauncher::packageAndClassAloneMakeTheIdentity_data()
{
    QTest::addColumn<ApkLauncher>("other");
    QTest::addColumn<bool>("isEqual");
    const auto row = [](const char *name, const ApkLauncher &other, bool isEqual) {
        QTest::newRow(name) << other << isEqual;
    };
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");

    row("same", {a, "a", a, a, a}, true);
    row("caption", {b, "a", a, a, a}, true);
    row("icon", {a, "b", a, a, a}, true);
    row("version", {a, "a", a, a, b}, true);
    row("all but the identity", {b, "b", a, a, b}, true);
    row("package", {a, "a", b, a, a}, false);
    row("class", {a, "a", a, b, a}, false);
    row("case of the package", {a, "a", QStringLiteral("A"), a, a}, false);
    row("empty package", {a, "a", QString(), a, a}, false);
}

void TestApkLauncher::packageAndClassAloneMakeTheIdentity()
{
    QFETCH(ApkLauncher, other);
    QFETCH(bool, isEqual);

    const QString a = QStringLiteral("a");
    const ApkLauncher launcher{a, "a", a, a, a};
    QCOMPARE(launcher == other, isEqual);
    QCOMPARE(other == launcher, isEqual);
}

void TestApkLauncher::newRecordIsNullThroughout()
{
    const ApkLauncher launcher;
    QVERIFY(launcher.caption.isNull());
    QVERIFY(launcher.icon.isNull());
    QVERIFY(launcher.packageName.isNull());
    QVERIFY(launcher.className.isNull());
    QVERIFY(launcher.packageVersion.isNull());
}

void TestApkLauncher::copyIsIndependent()
{
    ApkLauncher launcher;
    launcher.caption = QStringLiteral("Maps");
    const ApkLauncher copy = launcher;
    launcher.caption = QStringLiteral("Mail");
    QCOMPARE(copy.caption, QStringLiteral("Maps"));
}

LUM_TEST_MAIN(TestApkLauncher)
#include "tst_apklauncher.moc"
