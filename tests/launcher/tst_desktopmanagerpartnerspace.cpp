// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>

using namespace LauncherFiles;

namespace {

const QString &fixedFile()
{
    static const QString path = QStringLiteral("/etc/lumd/app-blacklist");
    return path;
}

using Keys = QMap<QString, QString>;

Keys partnerKeys()
{
    return {{QStringLiteral("NoDisplay"), QStringLiteral("true")},
        {QStringLiteral("Categories"), QStringLiteral("X-QuillfinPartnerSpace")}};
}

void mark(const char *name)
{
    makeDirectory(QLatin1String(partnerSpace));
    write(QLatin1String(partnerSpace) + QLatin1String(name), {});
}

} // namespace

class TestDesktopManagerPartnerSpace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void markerHidesThePackage_data();
    void markerHidesThePackage();
    void markedPackageIsRewrittenEveryTime();
    void markedPackageOnTheBlacklistIsNotRewritten();
    void categoryStaysWhenTheMarkerGoes();
};

void TestDesktopManagerPartnerSpace::cleanup()
{
    QFile::remove(fixedFile());
    QDir(QLatin1String(partnerSpace)).removeRecursively();
    const QStringList paths = allFiles();
    for (const QString &path : paths)
        QFile::remove(path);
}

void TestDesktopManagerPartnerSpace::markerHidesThePackage_data()
{
    QTest::addColumn<QByteArray>("marker");
    QTest::addColumn<QString>("package");
    QTest::addColumn<bool>("isMarked");
    const auto row = [](const char *name, const char *marker, const char *package, bool isMarked) {
        QTest::newRow(name) << QByteArray(marker) << QString::fromUtf8(package) << isMarked;
    };

    row("same name", "a.b.apk", "a.b", true);
    row("another package", "a.c.apk", "a.b", false);
    row("no suffix", "a.b", "a.b", false);
    row("other case of the name", "A.b.apk", "a.b", false);
    row("number in the marker", "a.b-12.apk", "a.b", false);
    row("number in the package", "a.b.apk", "a.b-12", true);
    row("number in both", "a.b-12.apk", "a.b-12", false);
    row("placeholder in the package", "%1.apk", "%1", true);
    row("placeholders in the package", "%2%3.apk", "%2%3", true);
    row("no package", ".apk", "", true);
}

void TestDesktopManagerPartnerSpace::markerHidesThePackage()
{
    QFETCH(QByteArray, marker);
    QFETCH(QString, package);
    QFETCH(bool, isMarked);

    mark(marker.constData());
    DesktopManager manager{ApkConfig()};
    const ApkLauncher app = launcher(package.toUtf8().constData());
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app, isMarked ? partnerKeys() : Keys()));
}

void TestDesktopManagerPartnerSpace::markedPackageIsRewrittenEveryTime()
{
    const ApkLauncher app = launcher("a.b");
    mark("a.b.apk");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    for (int i = 0; i < 3; ++i) {
        const Stamp before = stamp(desktopPath(app));
        const LogCapture log;
        manager.onCreateLauncher(app);
        QVERIFY(stamp(desktopPath(app)).inode != before.inode);
        QCOMPARE(read(desktopPath(app)), entryText(app, partnerKeys()));
        QCOMPARE(log.lines().last(), pathLine("debug", "Updating:", desktopPath(app)));
    }
}

void TestDesktopManagerPartnerSpace::markedPackageOnTheBlacklistIsNotRewritten()
{
    const ApkLauncher app = launcher("a.b");
    mark("a.b.apk");
    write(fixedFile(), "a.b\n");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)), entryText(app, partnerKeys()));
    const Stamp before = stamp(desktopPath(app));
    manager.onCreateLauncher(app);
    QVERIFY(stamp(desktopPath(app)) == before);
}

void TestDesktopManagerPartnerSpace::categoryStaysWhenTheMarkerGoes()
{
    const ApkLauncher app = launcher("a.b");
    mark("a.b.apk");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    QVERIFY(QFile::remove(QLatin1String(partnerSpace) + QLatin1String("a.b.apk")));
    manager.onCreateLauncher(app);
    QCOMPARE(read(desktopPath(app)),
        entryText(app, {{QStringLiteral("Categories"), QStringLiteral("X-QuillfinPartnerSpace")}}));
}

LUM_TEST_MAIN(TestDesktopManagerPartnerSpace)
#include "tst_desktopmanagerpartnerspace.moc"
