// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/fileoperations.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace LauncherFiles;

namespace {

bool hidesKinds = false;

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

// The C library's own, but for the kind.
extern "C" dirent *readdir(DIR *directory)
{
    static const auto original = reinterpret_cast<dirent *(*)(DIR *)>(dlsym(RTLD_NEXT, "readdir"));
    dirent *const entry = original(directory);
    if (entry && hidesKinds)
        entry->d_type = DT_UNKNOWN;
    return entry;
}

class TestFileOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { makeDirectory(folder()); }

    void fileDiffersUnlessEveryByteIsTheSame_data();
    void fileDiffersUnlessEveryByteIsTheSame();
    void fileThatCannotBeReadDiffers();
    void fileIsWhatIsReadWhateverItsSize();
    void firstDescriptorIsOneLikeAnother();
    void namesAreListedAsQtListsThem_data();
    void namesAreListedAsQtListsThem();
    void kindsAreListedAsQtListsThem();
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

    QCOMPARE(mkfifo(qPrintable(target()), 0600), 0);
    QVERIFY(fileDiffers(target(), {}));
    QVERIFY(QFile::remove(target()));
    write(target(), "a");
    QCOMPARE(truncate(qPrintable(target()), (1 << 30) + 1), 0);
    QVERIFY(!readFile(target()));
    write(target(), {});
    QVERIFY(!readFile(target() + QChar(0)));
}

// The kernel's own files have the size of a page.
void TestFileOperations::fileIsWhatIsReadWhateverItsSize()
{
    const QString path = QStringLiteral("/sys/devices/system/cpu/online");
    const QByteArray bytes = read(path);
    QVERIFY(!bytes.isEmpty() && bytes.size() < QFileInfo(path).size());
    QVERIFY(!fileDiffers(path, bytes));
}

// The first is free in a process whose standard input is closed.
void TestFileOperations::firstDescriptorIsOneLikeAnother()
{
    write(target(), "a");
    close(STDIN_FILENO);
    QVERIFY(!fileDiffers(target(), "a"));
    QCOMPARE(fcntl(STDIN_FILENO, F_GETFD), -1);
}

// Capital letters are sorted as small ones, and nothing else is, whatever lies next to them.
void TestFileOperations::namesAreListedAsQtListsThem_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<QByteArray>("suffix");

    QTest::newRow("of both ends") << QByteArray("pre_") << QByteArray(".end");
    QTest::newRow("in capitals") << QByteArray("PRE_") << QByteArray(".END");
    QTest::newRow("of ends that overlap") << QByteArray("pre_a.") << QByteArray("a.end");
    QTest::newRow("of ends that meet") << QByteArray("pre_") << QByteArray("a.end");
}

void TestFileOperations::namesAreListedAsQtListsThem()
{
    QFETCH(QByteArray, prefix);
    QFETCH(QByteArray, suffix);

    for (const char *between : {"", "@", "A", "a1", "B2", "b1", "b3", "Y", "Z2", "z1", "z3", "[",
             "_", "`", "{", "A@", "a[", "\xc3\x84", "\xc3\xa4z", "\xc3\x96z"}) {
        for (const char *name : {"pre_%1.end", "pre_%1", "%1.end", "xpre_%1.end", "pre_%1.endx"})
            write(folder() + QString::fromUtf8(name).arg(QString::fromUtf8(between)), "a");
    }
    QStringList expected;
    const QString pattern = QString::fromLatin1(prefix + '*' + suffix);
    for (const QString &name : QDir(folder()).entryList({pattern}))
        expected.append(folder() + name);
    const QStringList found =
        listFiles(QLatin1String("/run/files/"), QLatin1String(prefix), QLatin1String(suffix));
    QCOMPARE(found, expected);
}

// Some file systems do not tell the reader of a folder what kind each name is of.
void TestFileOperations::kindsAreListedAsQtListsThem()
{
    const auto path = [](const char *name) { return folder() + QLatin1String(name); };
    write(path("pre_file"), "a");
    makeDirectory(path("pre_folder"));
    QCOMPARE(mkfifo(qPrintable(path("pre_fifo")), 0600), 0);
    QVERIFY(QFile::link(path("pre_file"), path("pre_linktofile")));
    QVERIFY(QFile::link(path("pre_folder"), path("pre_linktofolder")));
    QVERIFY(QFile::link(path("pre_fifo"), path("pre_linktofifo")));
    QVERIFY(QFile::link(path("missing"), path("pre_linktonothing")));
    QStringList expected;
    const QStringList names = QDir(folder()).entryList({QStringLiteral("pre_*")});
    for (const QString &name : names)
        expected.append(folder() + name);
    QVERIFY(expected.contains(path("pre_file")) && expected.contains(path("pre_folder")));
    QVERIFY(!expected.contains(path("pre_fifo")) && !expected.contains(path("pre_linktonothing")));
    for (const bool isHidden : {false, true}) {
        hidesKinds = isHidden;
        const QStringList found =
            listFiles(QLatin1String("/run/files/"), QLatin1String("pre_"), QLatin1String(""));
        hidesKinds = false;
        QCOMPARE(found, expected);
    }
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
