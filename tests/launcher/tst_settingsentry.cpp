// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/settingsentry.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

using namespace LauncherFiles;

namespace {

const QString &name()
{
    static const QString text = QStringLiteral("lumd_launcher_a_b-a_b_Main");
    return text;
}

const QString &entry()
{
    static const QString path =
        QStringLiteral("/usr/share/tovra-settings/entries/lumd_launcher_a_b-a_b_Main.json");
    return path;
}

// What the arguments must be escaped in already.
QByteArray document(const char *desktopName, const char *package, const char *version)
{
    return QByteArray("{\n"
                      "    \"entries\": [\n"
                      "        {\n"
                      "            \"params\": {\n"
                      "                \"properties\": {\n"
                      "                    \"packageName\": \"")
        + package
        + "\",\n"
          "                    \"packageVersion\": \""
        + version
        + "\"\n"
          "                },\n"
          "                \"source\": \"/usr/share/tovra-settings/pages/apk-configuration/"
          "apkConfigurationPage.qml\"\n"
          "            },\n"
          "            \"path\": \"applications/"
        + desktopName
        + "\",\n"
          "            \"type\": \"page\"\n"
          "        }\n"
          "    ]\n"
          "}\n";
}

QString failureLine()
{
    return logLine(
        "warning", QStringLiteral("Unable to write json file \"%1\" for writing").arg(entry()));
}

bool writeVersion(const char *version)
{
    return writeSettingsEntry(name(), QStringLiteral("a.b"), QString::fromLatin1(version));
}

QByteArray documentOfVersion(const char *version)
{
    return document("lumd_launcher_a_b-a_b_Main.desktop", "a.b", version);
}

} // namespace

class TestSettingsEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyByteIsFixed();
    void valuesAreStringsWhateverTheyHold_data();
    void valuesAreStringsWhateverTheyHold();
    void everyCharacterIsAsQtWritesIt();
    void nameIsAStringWhateverItHolds();
    void sameVersionLeavesTheFileAlone();
    void newVersionReplacesTheFile();
    void missingFolderIsAWarningAndNotMade();
    void directoryInThePlaceOfTheFileIsAWarning();
    void readOnlyFolderIsAWarning();
    void fullDiskIsAWarningAndTheOldFileStays();
};

void TestSettingsEntry::everyByteIsFixed()
{
    const LogCapture log;
    writeVersion("1.2.3");
    QCOMPARE(read(entry()), documentOfVersion("1.2.3"));
    QCOMPARE(listing(settings), QStringList(QStringLiteral("lumd_launcher_a_b-a_b_Main.json")));
    QCOMPARE(listing(applications), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TestSettingsEntry::valuesAreStringsWhateverTheyHold_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QByteArray>("packageText");
    QTest::addColumn<QByteArray>("versionText");
    const auto row = [](const char *name, const QString &package, const QString &version,
                         const char *packageText, const char *versionText) {
        QTest::newRow(name) << package << version << QByteArray(packageText)
                            << QByteArray(versionText);
    };

    row("empty", QStringLiteral(""), QStringLiteral(""), "", "");
    row("null", QString(), QString(), "", "");
    row("number", QStringLiteral("1"), QStringLiteral("7"), "1", "7");
    row("placeholders", QStringLiteral("%1"), QStringLiteral("%2"), "%1", "%2");
    row("quotes and line feeds", QStringLiteral("a\"b\\c"), QStringLiteral("1\n2\t3"),
        "a\\\"b\\\\c", "1\\n2\\t3");
    row("lone quote", QStringLiteral("\""), QStringLiteral("1\""), "\\\"", "1\\\"");
    row("lone backslash", QStringLiteral("\\"), QStringLiteral("1\\"), "\\\\", "1\\\\");
    row("not ASCII", QStringLiteral("\u00e4"), QStringLiteral("\u6f22"), "\xc3\xa4",
        "\xe6\xbc\xa2");
    row("NUL", QString(QChar(0)), QString(QChar(0)), "\\u0000", "\\u0000");
    row("slashes", QStringLiteral("../a"), QStringLiteral("/"), "../a", "/");
}

void TestSettingsEntry::valuesAreStringsWhateverTheyHold()
{
    QFETCH(QString, package);
    QFETCH(QString, version);
    QFETCH(QByteArray, packageText);
    QFETCH(QByteArray, versionText);

    writeSettingsEntry(name(), package, version);
    QCOMPARE(read(entry()),
        document("lumd_launcher_a_b-a_b_Main.desktop", packageText.constData(),
            versionText.constData()));
}

// Alone in a text of others, which are looked at many at a time.
void TestSettingsEntry::everyCharacterIsAsQtWritesIt()
{
    const QString others = QStringLiteral("abcdefghijklmnopqrs");
    for (ushort unit = 0; unit < 0x200; ++unit) {
        const QString text = others + QChar(unit) + others;
        writeSettingsEntry(name(), QStringLiteral("p"), text);
        const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        const QByteArray quoted = array.mid(2, array.size() - 4);
        QCOMPARE(
            read(entry()), document("lumd_launcher_a_b-a_b_Main.desktop", "p", quoted.constData()));
    }
}

void TestSettingsEntry::nameIsAStringWhateverItHolds()
{
    writeSettingsEntry(QStringLiteral("e.\u00e4\"\\"), QStringLiteral("p"), QStringLiteral("1"));
    QCOMPARE(read(QStringLiteral("/usr/share/tovra-settings/entries/e.\u00e4\"\\.json")),
        document("e.\xc3\xa4\\\"\\\\.desktop", "p", "1"));
}

void TestSettingsEntry::sameVersionLeavesTheFileAlone()
{
    writeVersion("1");
    const Stamp before = stamp(entry());
    QVERIFY(!writeVersion("1"));
    QVERIFY(stamp(entry()) == before);
}

void TestSettingsEntry::newVersionReplacesTheFile()
{
    writeVersion("1");
    const Stamp before = stamp(entry());
    QVERIFY(writeVersion("2"));
    QCOMPARE(read(entry()), documentOfVersion("2"));
    QVERIFY(stamp(entry()).inode != before.inode);
    QCOMPARE(listing(settings), QStringList(QStringLiteral("lumd_launcher_a_b-a_b_Main.json")));
}

void TestSettingsEntry::missingFolderIsAWarningAndNotMade()
{
    QVERIFY(QDir().rmdir(QLatin1String(settings)));
    const LogCapture log(LogCapture::Level::Default);
    QVERIFY(!writeVersion("1"));
    QVERIFY(!QFile::exists(QLatin1String(settings)));
    QCOMPARE(log.lines(), QStringList(failureLine()));
}

void TestSettingsEntry::directoryInThePlaceOfTheFileIsAWarning()
{
    makeDirectory(entry());
    const LogCapture log(LogCapture::Level::Default);
    QVERIFY(!writeVersion("1"));
    QCOMPARE(log.lines(), QStringList(failureLine()));
    QCOMPARE(listing(settings), QStringList(QStringLiteral("lumd_launcher_a_b-a_b_Main.json")));
    QCOMPARE(listing(entry()), QStringList());
}

void TestSettingsEntry::readOnlyFolderIsAWarning()
{
    writeVersion("1");
    TestNamespace::setReadOnly(QLatin1String(settings), true);
    const LogCapture log(LogCapture::Level::Default);
    QVERIFY(!writeVersion("1"));
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(!writeVersion("2"));
    QCOMPARE(log.lines(), QStringList(failureLine()));
    QCOMPARE(read(entry()), documentOfVersion("1"));
    QCOMPARE(listing(settings), QStringList(QStringLiteral("lumd_launcher_a_b-a_b_Main.json")));
}

void TestSettingsEntry::fullDiskIsAWarningAndTheOldFileStays()
{
    TestNamespace::mountSmallDisk(QLatin1String(settings), 64);
    writeVersion("1");
    fillDisk(QLatin1String(settings));
    const LogCapture log(LogCapture::Level::Default);
    QVERIFY(!writeVersion("2"));
    QCOMPARE(log.lines(), QStringList(failureLine()));
    QCOMPARE(read(entry()), documentOfVersion("1"));
    QCOMPARE(listing(settings),
        QStringList({QStringLiteral("filler"), QStringLiteral("lumd_launcher_a_b-a_b_Main.json")}));
}

LUM_TEST_MAIN(TestSettingsEntry)
#include "tst_settingsentry.moc"
