// SPDX-License-Identifier: BSD-3-Clause
#include "appcatalogue.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

AndroidApp app(const char *package)
{
    AndroidApp app;
    app.package = QString::fromLatin1(package);
    return app;
}

} // namespace

class TestAppCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void uidStaysWhenAnotherAppComesOrGoes();
    void uidStaysWhenTheAppIsReplaced();
    void uidOfARemovedAppIsNotGivenAgain();
    void uidIsTheSameAfterAnotherStart();

private:
    const QTemporaryDir m_folder;
};

void TestAppCatalogue::uidStaysWhenAnotherAppComesOrGoes()
{
    AppCatalogue apps(m_folder.filePath(QStringLiteral("stays")));
    QCOMPARE(apps.uid(QStringLiteral("m")), -1);
    QVERIFY(apps.add(app("m")));
    QCOMPARE(apps.uid(QStringLiteral("m")), 10000);
    QVERIFY(apps.add(app("a")));
    QCOMPARE(apps.uid(QStringLiteral("a")), 10001);
    QCOMPARE(apps.uid(QStringLiteral("m")), 10000);
    QVERIFY(apps.remove(QStringLiteral("m")));
    QCOMPARE(apps.uid(QStringLiteral("m")), -1);
    QCOMPARE(apps.uid(QStringLiteral("a")), 10001);
}

void TestAppCatalogue::uidStaysWhenTheAppIsReplaced()
{
    AppCatalogue apps(m_folder.filePath(QStringLiteral("replaced")));
    QVERIFY(apps.add(app("a")));
    QVERIFY(apps.add(app("b")));
    QVERIFY(apps.add(app("a")));
    QCOMPARE(apps.uid(QStringLiteral("a")), 10000);
}

void TestAppCatalogue::uidOfARemovedAppIsNotGivenAgain()
{
    AppCatalogue apps(m_folder.filePath(QStringLiteral("removed")));
    QVERIFY(apps.add(app("a")));
    QVERIFY(apps.add(app("b")));
    QVERIFY(apps.remove(QStringLiteral("a")));
    QVERIFY(apps.add(app("c")));
    QCOMPARE(apps.uid(QStringLiteral("c")), 10002);
}

void TestAppCatalogue::uidIsTheSameAfterAnotherStart()
{
    const QString folder = m_folder.filePath(QStringLiteral("start"));
    QVERIFY(QDir().mkpath(folder));
    for (const char *package : {"m", "n"}) {
        QFile file(folder + QLatin1Char('/') + QLatin1String(package) + QLatin1String(".json"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("{\"package\": \"") + package + "\"}");
    }
    AppCatalogue before(folder);
    QCOMPARE(before.load(), QStringList());
    QCOMPARE(before.uid(QStringLiteral("n")), 10001);
    QVERIFY(before.add(app("a")));
    AppCatalogue after(folder);
    QCOMPARE(after.load(), QStringList());
    QCOMPARE(after.uid(QStringLiteral("m")), 10000);
    QCOMPARE(after.uid(QStringLiteral("n")), 10001);
    QCOMPARE(after.uid(QStringLiteral("a")), 10002);
}

QTEST_APPLESS_MAIN(TestAppCatalogue)
#include "tst_appcatalogue.moc"
