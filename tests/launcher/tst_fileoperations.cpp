// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/fileoperations.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

using namespace LauncherFiles;

namespace {

// A folder that is empty in the test's namespace.
const QString &folder()
{
    static const QString path = QStringLiteral("/run/files/");
    return path;
}

const QString &target()
{
    static const QString path = QStringLiteral("/run/files/target");
    return path;
}

} // namespace

class TestFileOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { makeDirectory(folder()); }

    void fileDiffersUnlessEveryByteIsTheSame_data();
    void fileDiffersUnlessEveryByteIsTheSame();
    void fileThatCannotBeReadDiffers();
    void bytesAreWrittenAsTheyAre_data();
    void bytesAreWrittenAsTheyAre();
    void fileIsReplacedAndNotOverwritten();
    void noBytesAreAFailureThatLeavesTheFileAlone();
    void noBytesMakeNoFile();
    void missingFolderIsAFailure();
    void directoryIsNotReplaced();
    void linkStaysAndItsTargetIsReplaced();
    void danglingLinkGetsItsTarget();
    void readOnlyFolderIsAFailure();
    void fullDiskLeavesTheOldFile_data();
    void fullDiskLeavesTheOldFile();
    void newFileHasTheUsualMode();
    void replacedFileKeepsItsMode();
};

void TestFileOperations::fileDiffersUnlessEveryByteIsTheSame_data()
{
    QTest::addColumn<QByteArray>("onDisk");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("differs");

    const QByteArray long1(100000, 'a');
    QByteArray long2 = long1;
    long2[99999] = 'b';
    QTest::newRow("same") << QByteArray("abc") << QByteArray("abc") << false;
    QTest::newRow("both empty") << QByteArray("") << QByteArray("") << false;
    QTest::newRow("empty and null") << QByteArray("") << QByteArray() << false;
    QTest::newRow("other byte") << QByteArray("abc") << QByteArray("abd") << true;
    QTest::newRow("shorter") << QByteArray("abc") << QByteArray("ab") << true;
    QTest::newRow("longer") << QByteArray("abc") << QByteArray("abcd") << true;
    QTest::newRow("empty on disk") << QByteArray("") << QByteArray("a") << true;
    QTest::newRow("no bytes") << QByteArray("a") << QByteArray() << true;
    QTest::newRow("behind a NUL") << QByteArray("a\0b", 3) << QByteArray("a\0c", 3) << true;
    QTest::newRow("same with a NUL") << QByteArray("a\0b", 3) << QByteArray("a\0b", 3) << false;
    QTest::newRow("last of many") << long1 << long2 << true;
    QTest::newRow("many the same") << long1 << QByteArray(100000, 'a') << false;
}

void TestFileOperations::fileDiffersUnlessEveryByteIsTheSame()
{
    QFETCH(QByteArray, onDisk);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, differs);

    write(target(), onDisk);
    const Stamp before = stamp(target());
    QCOMPARE(fileDiffers(target(), bytes), differs);
    QVERIFY(stamp(target()) == before);
}

void TestFileOperations::fileThatCannotBeReadDiffers()
{
    QVERIFY(fileDiffers(target(), "a"));
    QVERIFY(fileDiffers(target(), {}));
    QVERIFY(fileDiffers(folder(), {}));
    QVERIFY(fileDiffers({}, {}));
    QCOMPARE(listing(folder()), QStringList());
}

void TestFileOperations::bytesAreWrittenAsTheyAre_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("one") << QByteArray("a");
    QTest::newRow("NUL and line ends") << QByteArray("\0\r\n\x1a\xff", 5);
    QTest::newRow("20 KB") << QByteArray(20 << 10, 'x');
    QTest::newRow("10 MB") << QByteArray(10 << 20, 'x');
}

void TestFileOperations::bytesAreWrittenAsTheyAre()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(writeFile(target(), bytes));
    QVERIFY(read(target()) == bytes);
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("target")));
}

void TestFileOperations::fileIsReplacedAndNotOverwritten()
{
    write(target(), "the old file");
    const Stamp before = stamp(target());
    QFile reader(target());
    QVERIFY(reader.open(QIODevice::ReadOnly));

    QVERIFY(writeFile(target(), "new"));
    QCOMPARE(read(target()), QByteArray("new"));
    QVERIFY(stamp(target()).inode != before.inode);
    QCOMPARE(reader.readAll(), QByteArray("the old file"));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("target")));
}

void TestFileOperations::noBytesAreAFailureThatLeavesTheFileAlone()
{
    write(target(), "old");
    const Stamp before = stamp(target());
    QVERIFY(!writeFile(target(), {}));
    QVERIFY(!writeFile(target(), QByteArray("")));
    QCOMPARE(read(target()), QByteArray("old"));
    QVERIFY(stamp(target()) == before);
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("target")));
}

void TestFileOperations::noBytesMakeNoFile()
{
    QVERIFY(!writeFile(target(), {}));
    QCOMPARE(listing(folder()), QStringList());
}

void TestFileOperations::missingFolderIsAFailure()
{
    QVERIFY(!writeFile(folder() + QLatin1String("missing/file"), "a"));
    QVERIFY(!writeFile({}, "a"));
    QCOMPARE(listing(folder()), QStringList());
}

void TestFileOperations::directoryIsNotReplaced()
{
    makeDirectory(target());
    write(target() + QLatin1String("/inner"), "a");
    QVERIFY(!writeFile(target(), "a"));
    QCOMPARE(listing(target()), QStringList(QStringLiteral("inner")));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("target")));
}

void TestFileOperations::linkStaysAndItsTargetIsReplaced()
{
    const QString behind = folder() + QLatin1String("behind");
    write(behind, "old");
    QVERIFY(QFile::link(behind, target()));
    QVERIFY(writeFile(target(), "new"));
    QVERIFY(QFileInfo(target()).isSymLink());
    QCOMPARE(read(behind), QByteArray("new"));
    QCOMPARE(listing(folder()), QStringList({QStringLiteral("behind"), QStringLiteral("target")}));
}

void TestFileOperations::danglingLinkGetsItsTarget()
{
    const QString behind = folder() + QLatin1String("behind");
    QVERIFY(QFile::link(behind, target()));
    QVERIFY(fileDiffers(target(), {}));
    QVERIFY(writeFile(target(), "new"));
    QVERIFY(QFileInfo(target()).isSymLink());
    QCOMPARE(read(behind), QByteArray("new"));
    QCOMPARE(listing(folder()), QStringList({QStringLiteral("behind"), QStringLiteral("target")}));
}

void TestFileOperations::readOnlyFolderIsAFailure()
{
    TestNamespace::mountSmallDisk(folder(), 64);
    write(target(), "old");
    TestNamespace::setReadOnly(folder(), true);
    QVERIFY(!writeFile(target(), "new"));
    QVERIFY(!writeFile(folder() + QLatin1String("other"), "new"));
    QCOMPARE(read(target()), QByteArray("old"));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("target")));

    TestNamespace::setReadOnly(folder(), false);
    QVERIFY(writeFile(target(), "new"));
    QCOMPARE(read(target()), QByteArray("new"));
}

void TestFileOperations::fullDiskLeavesTheOldFile_data()
{
    QTest::addColumn<int>("kilobytesFree");
    QTest::addColumn<int>("size");

    // Around the sizes of a page and of Qt's write buffer, 16 KB.
    QTest::newRow("nothing free, 1 byte") << 0 << 1;
    QTest::newRow("nothing free, 5000 bytes") << 0 << 5000;
    QTest::newRow("nothing free, 10 MB") << 0 << (10 << 20);
    QTest::newRow("4 KB free, 5000 bytes") << 4 << 5000;
    QTest::newRow("12 KB free, 16 KB") << 12 << (16 << 10);
    QTest::newRow("12 KB free, 20000 bytes") << 12 << 20000;
    QTest::newRow("12 KB free, 10 MB") << 12 << (10 << 20);
}

void TestFileOperations::fullDiskLeavesTheOldFile()
{
    QFETCH(int, kilobytesFree);
    QFETCH(int, size);

    const QString disk = QStringLiteral("/run/disk%1-%2/").arg(kilobytesFree).arg(size);
    TestNamespace::mountSmallDisk(disk, 64);
    const QString path = disk + QLatin1String("target");
    const QString reserve = disk + QLatin1String("reserve");
    write(path, "old");
    write(reserve, QByteArray(kilobytesFree << 10, 'r'));
    fillDisk(disk);
    QVERIFY(QFile::remove(reserve));
    const QStringList before = listing(disk);

    QVERIFY(!writeFile(path, QByteArray(size, 'n')));
    QVERIFY(!writeFile(disk + QLatin1String("other"), QByteArray(size, 'n')));
    QCOMPARE(read(path), QByteArray("old"));
    QCOMPARE(listing(disk), before);

    QVERIFY(QFile::remove(disk + QLatin1String("filler")));
    QVERIFY(writeFile(path, "new"));
    QCOMPARE(read(path), QByteArray("new"));
}

void TestFileOperations::newFileHasTheUsualMode()
{
    umask(022);
    QVERIFY(writeFile(target(), "a"));
    QCOMPARE(mode(target()), 0644u);
}

void TestFileOperations::replacedFileKeepsItsMode()
{
    write(target(), "old");
    QCOMPARE(chmod(qPrintable(target()), 0640), 0);
    QVERIFY(writeFile(target(), "new"));
    QCOMPARE(mode(target()), 0640u);
}

LUM_TEST_MAIN(TestFileOperations)
#include "tst_fileoperations.moc"
