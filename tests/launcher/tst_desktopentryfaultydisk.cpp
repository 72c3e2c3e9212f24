// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QFile>
#include <QFileInfo>

using namespace LauncherFiles;

namespace {

const QString &folder()
{
    static const QString path = QStringLiteral("/usr/share/applications/");
    return path;
}

const QString &entryFile()
{
    static const QString path = QStringLiteral("/usr/share/applications/a.desktop");
    return path;
}

QString text(const char *ascii)
{
    return QString::fromUtf8(ascii);
}

QString updatingLine()
{
    return logLine("debug", QStringLiteral("Updating: \"%1\"").arg(entryFile()));
}

QString cannotOpenLine()
{
    return logLine("warning", QStringLiteral("Could not open \"%1\" for writing").arg(entryFile()));
}

QString cannotWriteLine()
{
    return logLine(
        "warning", QStringLiteral("Could not write desktop file \"%1\"").arg(entryFile()));
}

void setName(const char *value)
{
    DesktopEntry(entryFile()).setValue(text("Name"), text(value));
}

} // namespace

class TestDesktopEntryFaultyDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void directoryIsAnEmptyEntryThatCannotBeSaved();
    void danglingLinkGetsItsTarget();
    void missingFolderIsAWarning();
    void readOnlyFolderIsAWarningAndTheOldFileStays();
    void fullDiskIsAWarningAndTheOldFileStays_data();
    void fullDiskIsAWarningAndTheOldFileStays();
    void fullDiskMakesNoNewFile();
    void onlyACommitOfOtherBytesSaysSo();
};

void TestDesktopEntryFaultyDisk::directoryIsAnEmptyEntryThatCannotBeSaved()
{
    makeDirectory(entryFile());
    const LogCapture log;
    setName("x");
    QCOMPARE(log.lines(), QStringList({updatingLine(), cannotOpenLine()}));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("a.desktop")));
    QCOMPARE(listing(entryFile()), QStringList());
}

void TestDesktopEntryFaultyDisk::danglingLinkGetsItsTarget()
{
    const QString behind = folder() + QLatin1String("behind");
    QVERIFY(QFile::link(behind, entryFile()));
    const LogCapture log;
    setName("x");
    QCOMPARE(log.lines(), QStringList(updatingLine()));
    QVERIFY(QFileInfo(entryFile()).isSymLink());
    QCOMPARE(read(behind), QByteArray("[Desktop Entry]\nName=x\n"));
    QCOMPARE(
        listing(folder()), QStringList({QStringLiteral("a.desktop"), QStringLiteral("behind")}));
}

void TestDesktopEntryFaultyDisk::missingFolderIsAWarning()
{
    const QString path = folder() + QLatin1String("missing/a.desktop");
    const LogCapture log(LogCapture::Level::Default);
    DesktopEntry(path).setValue(text("Name"), text("x"));
    QCOMPARE(log.lines(),
        QStringList(
            logLine("warning", QStringLiteral("Could not open \"%1\" for writing").arg(path))));
    QCOMPARE(listing(folder()), QStringList());
}

void TestDesktopEntryFaultyDisk::readOnlyFolderIsAWarningAndTheOldFileStays()
{
    setName("old");
    TestNamespace::setReadOnly(folder(), true);
    const LogCapture log;
    setName("new");
    QCOMPARE(log.lines(), QStringList({updatingLine(), cannotOpenLine()}));
    QCOMPARE(read(entryFile()), QByteArray("[Desktop Entry]\nName=old\n"));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("a.desktop")));
}

void TestDesktopEntryFaultyDisk::fullDiskIsAWarningAndTheOldFileStays_data()
{
    QTest::addColumn<int>("size");

    // Around the sizes of Qt's write buffers, 16 KB.
    QTest::newRow("short") << 10;
    QTest::newRow("5000 bytes") << 5000;
    QTest::newRow("20000 bytes") << 20000;
    QTest::newRow("10 MB") << (10 << 20);
}

void TestDesktopEntryFaultyDisk::fullDiskIsAWarningAndTheOldFileStays()
{
    QFETCH(int, size);

    TestNamespace::mountSmallDisk(folder(), 64);
    const QString reserve = folder() + QLatin1String("reserve");
    for (const int bytesFree : {0, 4096, 12288}) {
        setName("old");
        write(reserve, QByteArray(bytesFree, 'r'));
        fillDisk(folder());
        QVERIFY(QFile::remove(reserve));
        const QStringList before = listing(folder());
        const bool fits = size + 100 < bytesFree;

        const LogCapture log;
        DesktopEntry(entryFile()).setValue(text("Name"), QString(size, QLatin1Char('n')));
        QCOMPARE(log.lines(),
            fits ? QStringList(updatingLine()) : QStringList({updatingLine(), cannotWriteLine()}));
        QCOMPARE(read(entryFile()),
            "[Desktop Entry]\nName=" + (fits ? QByteArray(size, 'n') : QByteArray("old")) + '\n');
        QCOMPARE(listing(folder()), before);
        QVERIFY(QFile::remove(folder() + QLatin1String("filler")));
    }
}

void TestDesktopEntryFaultyDisk::fullDiskMakesNoNewFile()
{
    TestNamespace::mountSmallDisk(folder(), 64);
    fillDisk(folder());
    const LogCapture log;
    setName("new");
    QCOMPARE(log.lines(), QStringList({updatingLine(), cannotWriteLine()}));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("filler")));
}

void TestDesktopEntryFaultyDisk::onlyACommitOfOtherBytesSaysSo()
{
    TestNamespace::mountSmallDisk(folder(), 64);
    DesktopEntry entry(entryFile());
    QVERIFY(!entry.commit());
    entry.setValue(text("Name"), text("a"));
    QVERIFY(entry.commit());
    QVERIFY(!entry.commit());
    fillDisk(folder());
    entry.setValue(text("Name"), text("b"));
    QVERIFY(!entry.commit());
    TestNamespace::setReadOnly(folder(), true);
    entry.setValue(text("Name"), text("c"));
    QVERIFY(!entry.commit());
}

LUM_TEST_MAIN(TestDesktopEntryFaultyDisk)
#include "tst_desktopentryfaultydisk.moc"
