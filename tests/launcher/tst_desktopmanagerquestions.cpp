// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>

#include <memory>

#include <unistd.h>

using namespace LauncherFiles;

namespace {

QString missingKeyLine(const QString &path, const char *key)
{
    return logLine("warning",
        QStringLiteral("File \"%1\" does not have key: \"%2\"").arg(path, QLatin1String(key)));
}

QString entryPath(const char *name)
{
    return QLatin1String(applications) + QLatin1String(name);
}

} // namespace

class TestDesktopManagerQuestions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void entriesAreGroupedByPackage();
    void nothingInstalledGivesNothing();
    void missingFolderGivesNothing();
    void onlyGeneratedNamesCount();
    void caseOfANameDoesNotMatter();
    void namesThatAreNoTextDoNotCount();
    void entryWithoutAPackageIsUnderTheNullKey();
    void everyQuestionReadsTheFilesAgain();
    void desktopFileGivesItsPackage_data();
    void desktopFileGivesItsPackage();
    void resolvedPackageIsLogged();
    void otherPathsComeBackInSilence_data();
    void otherPathsComeBackInSilence();
    void appNameIsThatOfTheFirstEntry();
    void appNameOfAnUnknownPackageIsThePackage_data();
    void appNameOfAnUnknownPackageIsThePackage();
    void appNameThatIsMissingIsNullWithAWarning();
    void detailsAreThoseOfTheFiles();

private:
    std::unique_ptr<DesktopManager> m_manager;
};

void TestDesktopManagerQuestions::init()
{
    m_manager = std::make_unique<DesktopManager>(ApkConfig());
}

void TestDesktopManagerQuestions::entriesAreGroupedByPackage()
{
    // The folder's list is sorted without regard to case, the packages by code unit.
    const QString b = leaveBehind(launcher("b.mail"));
    const QString upper = leaveBehind(launcher("C.upper"));
    const QString two = leaveBehind(launcher("a.maps", "two"));
    const QString one = leaveBehind(launcher("a.maps", "One"));

    const QMap<QString, QStringList> expected{
        {QStringLiteral("C.upper"), {upper}},
        {QStringLiteral("a.maps"), {one, two}},
        {QStringLiteral("b.mail"), {b}},
    };
    const LogCapture log;
    QCOMPARE(m_manager->installedLaunchers(), expected);
    QCOMPARE(m_manager->desktopFiles(), QStringList({upper, one, two, b}));
    QCOMPARE(m_manager->packages(),
        QStringList(
            {QStringLiteral("C.upper"), QStringLiteral("a.maps"), QStringLiteral("b.mail")}));
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerQuestions::nothingInstalledGivesNothing()
{
    QVERIFY(m_manager->installedLaunchers().isEmpty());
    QCOMPARE(m_manager->desktopFiles(), QStringList());
    QCOMPARE(m_manager->packages(), QStringList());
}

void TestDesktopManagerQuestions::missingFolderGivesNothing()
{
    QVERIFY(QDir().rmdir(QLatin1String(applications)));
    const LogCapture log;
    QVERIFY(m_manager->installedLaunchers().isEmpty());
    m_manager->onLaunchersComplete();
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerQuestions::onlyGeneratedNamesCount()
{
    const QByteArray text("[Desktop Entry]\nX-lumd-packageName=a.maps\n");
    for (const char *name : {"a.desktop", "lumd_launcher.desktop", "lumd_launcher_a.desktopx",
             "xlumd_launcher_a.desktop", ".lumd_launcher_a.desktop", "lumd_launcher_a"})
        write(entryPath(name), text);
    QCOMPARE(m_manager->desktopFiles(), QStringList());
    for (const char *name : {"lumd_launcher_.desktop", "lumd_launcher_a.b-c.desktop"})
        write(entryPath(name), text);
    QCOMPARE(m_manager->desktopFiles(),
        QStringList(
            {entryPath("lumd_launcher_.desktop"), entryPath("lumd_launcher_a.b-c.desktop")}));
}

void TestDesktopManagerQuestions::caseOfANameDoesNotMatter()
{
    QStringList expected;
    for (const char *name :
        {"LUMD_LAUNCHER_a.desktop", "lumd_launcher_b.DESKTOP", "Lumd_Launcher_c.Desktop",
            "LUMD_LAUNCHER_z\xc3\xa4.desktop", "lumd_launcher_z\xc3\xb6.DESKTOP"}) {
        expected.append(QLatin1String(applications) + QString::fromUtf8(name));
        write(expected.last(), "[Desktop Entry]\nX-lumd-packageName=a\n");
    }
    QCOMPARE(m_manager->desktopFiles(), expected);
}

void TestDesktopManagerQuestions::namesThatAreNoTextDoNotCount()
{
    const QByteArray text("[Desktop Entry]\nX-lumd-packageName=a\n");
    const QString good = entryPath("lumd_launcher_a.desktop");
    write(good, text);
    for (const char *name : {"lumd_launcher_\xff.desktop", "lumd_launcher_\xc3.desktop"}) {
        const QByteArray path = applications + QByteArray(name);
        QCOMPARE(link(qPrintable(good), path.constData()), 0);
    }
    const LogCapture log;
    QCOMPARE(m_manager->desktopFiles(), QStringList{good});
    QCOMPARE(m_manager->packages(), QStringList{QStringLiteral("a")});
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerQuestions::entryWithoutAPackageIsUnderTheNullKey()
{
    const QString maps = leaveBehind(launcher("a.maps"));
    const QString keyless = entryPath("lumd_launcher_x.desktop");
    write(keyless, "[Desktop Entry]\nName=x\n");
    const QString warning = missingKeyLine(keyless, "X-lumd-packageName");

    LogCapture log;
    const QMap<QString, QStringList> expected{
        {QString(), {keyless}},
        {QStringLiteral("a.maps"), {maps}},
    };
    QCOMPARE(m_manager->installedLaunchers(), expected);
    QCOMPARE(log.take(), QStringList(warning));
    QCOMPARE(m_manager->packages(), QStringList({QString(), QStringLiteral("a.maps")}));
    QCOMPARE(m_manager->desktopFiles(), QStringList({keyless, maps}));
    log.clear();
    QVERIFY(m_manager->packageForDesktopFile(keyless).isNull());
    QCOMPARE(log.take(),
        QStringList(
            {warning, logLine("debug", QStringLiteral("Resolved: \"%1\" ->  \"\"").arg(keyless))}));
    QCOMPARE(m_manager->appName({}), QStringLiteral("x"));
    m_manager->onRemovePackage({});
    QCOMPARE(m_manager->desktopFiles(), QStringList(maps));
}

void TestDesktopManagerQuestions::everyQuestionReadsTheFilesAgain()
{
    const QString maps = leaveBehind(launcher("a.maps"));
    QCOMPARE(m_manager->packageForDesktopFile(maps), QStringLiteral("a.maps"));
    write(maps, "[Desktop Entry]\nX-lumd-packageName=b\nName=New\n");
    QCOMPARE(m_manager->packageForDesktopFile(maps), QStringLiteral("b"));
    QCOMPARE(m_manager->appName(QStringLiteral("b")), QStringLiteral("New"));
    QVERIFY(QFile::remove(maps));
    QCOMPARE(m_manager->packages(), QStringList());
}

void TestDesktopManagerQuestions::desktopFileGivesItsPackage_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("package");

    QTest::newRow("first launcher")
        << desktopPath(launcher("a.maps", "One")) << QStringLiteral("a.maps");
    QTest::newRow("second launcher")
        << desktopPath(launcher("a.maps", "Two")) << QStringLiteral("a.maps");
    QTest::newRow("other package") << desktopPath(launcher("b.mail")) << QStringLiteral("b.mail");
}

void TestDesktopManagerQuestions::desktopFileGivesItsPackage()
{
    QFETCH(QString, path);
    QFETCH(QString, package);

    leaveBehind(launcher("a.maps", "One"));
    leaveBehind(launcher("a.maps", "Two"));
    leaveBehind(launcher("b.mail"));
    QCOMPARE(m_manager->packageForDesktopFile(path), package);
}

void TestDesktopManagerQuestions::resolvedPackageIsLogged()
{
    const QString maps = leaveBehind(launcher("a.maps"));
    const LogCapture log;
    m_manager->packageForDesktopFile(maps);
    QCOMPARE(log.lines(),
        QStringList(logLine("debug", QStringLiteral("Resolved: \"%1\" ->  \"a.maps\"").arg(maps))));
}

void TestDesktopManagerQuestions::otherPathsComeBackInSilence_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("apk") << QStringLiteral("/home/user/a.apk");
    QTest::newRow("package") << QStringLiteral("a.maps");
    QTest::newRow("file name alone") << QStringLiteral("lumd_launcher_a_maps-Main.desktop");
    QTest::newRow("other spelling of the path")
        << QStringLiteral("/usr/share//applications/lumd_launcher_a_maps-Main.desktop");
    QTest::newRow("other case") << QStringLiteral(
        "/usr/share/applications/lumd_launcher_A_maps-Main.desktop");
    QTest::newRow("missing entry") << desktopPath(launcher("b.mail"));
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("null") << QString();
}

void TestDesktopManagerQuestions::otherPathsComeBackInSilence()
{
    QFETCH(QString, path);

    leaveBehind(launcher("a.maps"));
    const LogCapture log;
    QCOMPARE(m_manager->packageForDesktopFile(path), path);
    QCOMPARE(m_manager->packageForDesktopFile(path).isNull(), path.isNull());
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerQuestions::appNameIsThatOfTheFirstEntry()
{
    ApkLauncher one = launcher("a.maps", "One");
    one.caption = QStringLiteral("Maps = M\u00e4p");
    leaveBehind(launcher("a.maps", "Two"));
    leaveBehind(one);
    const LogCapture log;
    QCOMPARE(m_manager->appName(QStringLiteral("a.maps")), one.caption);
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerQuestions::appNameOfAnUnknownPackageIsThePackage_data()
{
    QTest::addColumn<QString>("package");

    QTest::newRow("unknown") << QStringLiteral("b.mail");
    QTest::newRow("other case") << QStringLiteral("A.maps");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("path") << desktopPath(launcher("a.maps"));
}

void TestDesktopManagerQuestions::appNameOfAnUnknownPackageIsThePackage()
{
    QFETCH(QString, package);

    leaveBehind(launcher("a.maps"));
    const LogCapture log;
    QCOMPARE(m_manager->appName(package), package);
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerQuestions::appNameThatIsMissingIsNullWithAWarning()
{
    const QString path = entryPath("lumd_launcher_x.desktop");
    write(path, "[Desktop Entry]\nX-lumd-packageName=a.maps\n");
    const LogCapture log;
    QVERIFY(m_manager->appName(QStringLiteral("a.maps")).isNull());
    QCOMPARE(log.lines(), QStringList(missingKeyLine(path, "Name")));
}

void TestDesktopManagerQuestions::detailsAreThoseOfTheFiles()
{
    const ApkLauncher maps = launcher("a.maps");
    m_manager->onCreateLauncher(maps);
    const ApkLauncher mail = launcher("b.mail");
    leaveBehind(mail);
    write(desktopPath(mail),
        entryText(mail, {{QStringLiteral("NoDisplay"), QStringLiteral("true")}}));
    QVERIFY(QFile::remove(settingsPath(mail)));
    write(entryPath("lumd_launcher_x.desktop"), "[Desktop Entry]\nName=of no package\n");

    const QMap<QString, QVector<InstalledLauncher>> details = m_manager->launcherDetails();
    QCOMPARE(details.keys(), QStringList({maps.packageName, mail.packageName}));
    const QVector<InstalledLauncher> &shown = details.first();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().desktopPath, desktopPath(maps));
    QCOMPARE(shown.first().name, maps.caption);
    QCOMPARE(shown.first().icon, iconPath(maps));
    QCOMPARE(shown.first().version, maps.packageVersion);
    QCOMPARE(shown.first().isHidden, false);
    const QVector<InstalledLauncher> &hidden = details.last();
    QCOMPARE(hidden.size(), 1);
    QCOMPARE(hidden.first().version, QString());
    QCOMPARE(hidden.first().isHidden, true);
}

LUM_TEST_MAIN(TestDesktopManagerQuestions)
#include "tst_desktopmanagerquestions.moc"
