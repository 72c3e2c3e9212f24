// SPDX-License-Identifier: BSD-3-Clause
// Under which names files are staged, whatever they are called and wherever they lie.
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"

#include <QDir>

#include <sys/stat.h>

namespace {

const QString packageService = QStringLiteral("package");
const QByteArray contents = QByteArrayLiteral("PK\3\4 an app");

QString source(const QString &name)
{
    return QStringLiteral("/run/apps/") + name;
}

QString install(const QString &path)
{
    return resultOf(DaemonFixture::call(QStringLiteral("installFile"), {path}));
}

} // namespace

class TestInstallNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void unusualNamesAreStaged_data();
    void unusualNamesAreStaged();
    void linkIsFollowed();
    void dataRootIsNotToldToTheRuntime_data();
    void dataRootIsNotToldToTheRuntime();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestInstallNames::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestInstallNames::cleanup()
{
    m_world->renew();
    for (const QString &folder : {QStringLiteral("/home/.android"), source({}), marker()})
        QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QDir().mkpath(marker()));
}

void TestInstallNames::unusualNamesAreStaged_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const QString &given, const QString &name) {
        QTest::newRow(title) << source(given) << name;
    };
    // A temporary name has four letters more, and 255 is what Linux takes.
    const QString longest = QString(247, QLatin1Char('x')) + QLatin1String(".apk");
    row("as long as can be", longest, longest);
    row("not ASCII", QStringLiteral("\u00e4\u20ac \U0001f600.apk"),
        QStringLiteral("\u00e4\u20ac \U0001f600.apk"));
    row("blanks and quotes", QStringLiteral(" '$(a)`; .apk "), QStringLiteral(" '$(a)`; .apk "));
    row("not an apk", QStringLiteral("a.png"), QStringLiteral("a.png"));
    row("hidden", QStringLiteral(".a"), QStringLiteral(".a"));
    row("through the parent", QStringLiteral("b/../c.apk"), QStringLiteral("c.apk"));
    row("percent", QStringLiteral("%1%2.apk"), QStringLiteral("%1%2.apk"));
    row("like a resource", QStringLiteral(":x.apk"), QStringLiteral(":x.apk"));
    row("like a resource in a folder", QStringLiteral("b/:x.apk"), QStringLiteral(":x.apk"));
    row("a colon alone", QStringLiteral(":"), QStringLiteral(":"));
    row("a colon within", QStringLiteral("a:b.apk"), QStringLiteral("a:b.apk"));
}

void TestInstallNames::unusualNamesAreStaged()
{
    QFETCH(QString, given);
    QFETCH(QString, name);
    QVERIFY(QDir().mkpath(source(QStringLiteral("b"))));
    makeFile(given, contents);
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QCOMPARE(resultOf(DaemonFixture::call(QStringLiteral("installPartnerSpaceFile"), {given})),
        QStringLiteral("true"));
    QCOMPARE(entries(incoming()), QStringList{name});
    QCOMPARE(fileContents(incoming(name)), contents);
    QCOMPARE(entries(marker()), QStringList{name});
    QCOMPARE(names(m_world->requests(packageService, installCode)),
        QStringList{incomingInRuntime(name)});
}

void TestInstallNames::linkIsFollowed()
{
    // The daemon reads for root as root.
    makeFile(QStringLiteral("/run/secret"), contents);
    QCOMPARE(chmod("/run/secret", 0600), 0);
    QVERIFY(QDir().mkpath(source({})));
    const QString link = source(QStringLiteral("a.apk"));
    QVERIFY(QFile::link(QStringLiteral("/run/secret"), link));
    QVERIFY(m_world->start());
    QCOMPARE(install(link), QStringLiteral("true"));
    const QString staged = incoming(QStringLiteral("a.apk"));
    QVERIFY(!QFileInfo(staged).isSymLink());
    QCOMPARE(fileContents(staged), contents);
    QCOMPARE(rights(staged), QStringLiteral("0:0 644"));
}

void TestInstallNames::dataRootIsNotToldToTheRuntime_data()
{
    QTest::addColumn<QString>("root");
    QTest::newRow("plain") << QStringLiteral("/run/root");
    QTest::newRow("with a slash") << QStringLiteral("/run/root/");
    QTest::newRow("not ASCII") << QStringLiteral("/run/\u00e4");
}

void TestInstallNames::dataRootIsNotToldToTheRuntime()
{
    QFETCH(QString, root);
    const QString name = QStringLiteral("a.apk");
    makeFile(source(name), contents);
    m_world->daemon->setEnvironment(QStringLiteral("ANDROID_DATA_ROOT"), root);
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QCOMPARE(install(source(name)), QStringLiteral("true"));
    QCOMPARE(names(m_world->requests(packageService, installCode)),
        QStringList{incomingInRuntime(name)});
    QCOMPARE(fileContents(root + incomingInRuntime(name)), contents);
}

LUM_TEST_MAIN(TestInstallNames)
#include "tst_installnames.moc"
