// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"

#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char buildProperties[] = "/opt/alien/build.prop";

bool writeProperties(const QByteArray &text)
{
    QFile file{QLatin1String(buildProperties)};
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size();
}

QString notFoundLine()
{
    return QStringLiteral("critical com.tovra.lumd.config Cannot find sdk version in "
                          "/opt/alien/ build properties");
}

} // namespace

// A found level is kept for the life of the process, and each test function has a process of
// its own.
class TestSdkVersion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void levelIsFoundAndThenKept();
    void unreadableFileIsReadAgain_data();
    void unreadableFileIsReadAgain();
    void missingFileIsLookedForAgainUntilItIsThere();
    void fileThatIsADirectoryGivesZero();
    void blanksAroundTheLineAreTrimmed();
    void carriageReturnIsTrimmed();
    void carriageReturnBehindTheKeyIsTrimmed();
    void valueIsCutAtTheNextEqualsSign();
    void firstLineOfTheKeyWins();
    void keyIsFoundInAFileWithoutALineFeedAtItsEnd();
    void negativeLevelIsKept();
    void levelIsFoundWithoutStandardInput();
    void blankBehindTheEqualsSignIsSkipped();
    void otherThanAFileGivesZeroAtOnce_data();
    void otherThanAFileGivesZeroAtOnce();
    void knownLevelIsThatOfTheFileUntilOneIsKept();
};

void TestSdkVersion::levelIsFoundAndThenKept()
{
    QVERIFY(writeProperties("# begin build properties\nro.build.id=OPM7\n\n"
                            "ro.build.version.sdk=27\nro.build.version.release=8.1.0\n"));
    const LogCapture log;
    QCOMPARE(ApkConfig::sdkVersion(), 27);

    QVERIFY(writeProperties("ro.build.version.sdk=28\n"));
    QCOMPARE(ApkConfig::sdkVersion(), 27);
    QVERIFY(QFile::remove(QLatin1String(buildProperties)));
    QCOMPARE(ApkConfig::sdkVersion(), 27);
    QCOMPARE(log.lines(), QStringList());
}

void TestSdkVersion::unreadableFileIsReadAgain_data()
{
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no such key") << QByteArray("ro.build.id=27\n");
    QTest::newRow("no number") << QByteArray("ro.build.version.sdk=abc\n");
    QTest::newRow("number with more behind it") << QByteArray("ro.build.version.sdk=27a\n");
    QTest::newRow("hexadecimal") << QByteArray("ro.build.version.sdk=0x1b\n");
    QTest::newRow("beyond 32 bits") << QByteArray("ro.build.version.sdk=4294967323\n");
    QTest::newRow("zero") << QByteArray("ro.build.version.sdk=0\n");
    QTest::newRow("empty value") << QByteArray("ro.build.version.sdk=\n");
    QTest::newRow("no equals sign") << QByteArray("ro.build.version.sdk\n");
    QTest::newRow("blank before the equals sign") << QByteArray("ro.build.version.sdk =27\n");
    QTest::newRow("longer key") << QByteArray("ro.build.version.sdk_int=27\n");
    QTest::newRow("prefixed key") << QByteArray("xro.build.version.sdk=27\n");
    QTest::newRow("other case") << QByteArray("RO.build.version.sdk=27\n");
    QTest::newRow("key as a value") << QByteArray("x=ro.build.version.sdk=27\n");
    QTest::newRow("comment") << QByteArray("#ro.build.version.sdk=27\n");
    QTest::newRow("first line of the key has no number")
        << QByteArray("ro.build.version.sdk=abc\nro.build.version.sdk=27\n");
    QTest::newRow("bytes that are no UTF-8") << QByteArray("\xff\xfe\n\xc3=\x80\n");
}

void TestSdkVersion::unreadableFileIsReadAgain()
{
    QFETCH(QByteArray, text);
    QVERIFY(writeProperties(text));

    const LogCapture log(LogCapture::Level::Default);
    QCOMPARE(ApkConfig::sdkVersion(), 0);
    QCOMPARE(ApkConfig::sdkVersion(), 0);
    QCOMPARE(log.lines(), QStringList({notFoundLine(), notFoundLine()}));
}

void TestSdkVersion::missingFileIsLookedForAgainUntilItIsThere()
{
    LogCapture log;
    QCOMPARE(ApkConfig::sdkVersion(), 0);
    QCOMPARE(ApkConfig::sdkVersion(), 0);
    QCOMPARE(log.take(), QStringList({notFoundLine(), notFoundLine()}));

    QVERIFY(writeProperties("ro.build.version.sdk=29\n"));
    QCOMPARE(ApkConfig::sdkVersion(), 29);
    QVERIFY(QFile::remove(QLatin1String(buildProperties)));
    QCOMPARE(ApkConfig::sdkVersion(), 29);
    QCOMPARE(log.lines(), QStringList());
}

void TestSdkVersion::fileThatIsADirectoryGivesZero()
{
    QVERIFY(QDir().mkdir(QLatin1String(buildProperties)));
    const LogCapture log;
    QCOMPARE(ApkConfig::sdkVersion(), 0);
    QCOMPARE(log.lines(), QStringList(notFoundLine()));
}

void TestSdkVersion::blanksAroundTheLineAreTrimmed()
{
    QVERIFY(writeProperties("  \t ro.build.version.sdk=28 \t \n"));
    QCOMPARE(ApkConfig::sdkVersion(), 28);
}

void TestSdkVersion::carriageReturnIsTrimmed()
{
    QVERIFY(writeProperties("a=b\r\nro.build.version.sdk=28\r\n"));
    QCOMPARE(ApkConfig::sdkVersion(), 28);
}

void TestSdkVersion::carriageReturnBehindTheKeyIsTrimmed()
{
    // It is the key then, without a value.
    QVERIFY(writeProperties("ro.build.version.sdk\r\nro.build.version.sdk=28\r\n"));
    const LogCapture log;
    QCOMPARE(ApkConfig::sdkVersion(), 0);
    QCOMPARE(log.lines(), QStringList(notFoundLine()));
}

void TestSdkVersion::valueIsCutAtTheNextEqualsSign()
{
    QVERIFY(writeProperties("ro.build.version.sdk=27=28=29\n"));
    QCOMPARE(ApkConfig::sdkVersion(), 27);
}

void TestSdkVersion::firstLineOfTheKeyWins()
{
    QVERIFY(writeProperties("ro.build.version.sdk=28\nro.build.version.sdk=29\n"));
    QCOMPARE(ApkConfig::sdkVersion(), 28);
}

void TestSdkVersion::keyIsFoundInAFileWithoutALineFeedAtItsEnd()
{
    QVERIFY(writeProperties("a=b\nro.build.version.sdk=29"));
    QCOMPARE(ApkConfig::sdkVersion(), 29);
}

void TestSdkVersion::negativeLevelIsKept()
{
    QVERIFY(writeProperties("ro.build.version.sdk=-1\n"));
    const LogCapture log;
    QCOMPARE(ApkConfig::sdkVersion(), -1);
    QVERIFY(writeProperties("ro.build.version.sdk=29\n"));
    QCOMPARE(ApkConfig::sdkVersion(), -1);
    QCOMPARE(log.lines(), QStringList());
}

void TestSdkVersion::levelIsFoundWithoutStandardInput()
{
    QVERIFY(writeProperties("ro.build.version.sdk=29\n"));
    // The file is descriptor 0 then.
    QCOMPARE(close(STDIN_FILENO), 0);
    QCOMPARE(ApkConfig::sdkVersion(), 29);
}

// By the number's own parser; before the sign it would belong to the key.
void TestSdkVersion::blankBehindTheEqualsSignIsSkipped()
{
    QVERIFY(writeProperties("ro.build.version.sdk= \t28 =29\n"));
    QCOMPARE(ApkConfig::sdkVersion(), 28);
}

// A FIFO would otherwise be waited for until somebody writes into it.
void TestSdkVersion::otherThanAFileGivesZeroAtOnce_data()
{
    QTest::addColumn<bool>("isFifo");

    QTest::newRow("FIFO") << true;
    QTest::newRow("device") << false;
}

void TestSdkVersion::otherThanAFileGivesZeroAtOnce()
{
    QFETCH(bool, isFifo);

    QFile::remove(QLatin1String(buildProperties));
    if (isFifo)
        QCOMPARE(mkfifo(buildProperties, 0644), 0);
    else
        QCOMPARE(symlink("/dev/zero", buildProperties), 0);
    const LogCapture log;
    QCOMPARE(ApkConfig::sdkVersion(), 0);
    QCOMPARE(log.lines(), QStringList(notFoundLine()));
}

void TestSdkVersion::knownLevelIsThatOfTheFileUntilOneIsKept()
{
    QFile::remove(QLatin1String(buildProperties));
    const LogCapture log;
    QCOMPARE(ApkConfig::knownSdkVersion(), 0);
    for (const int level : {28, 29}) {
        QVERIFY(writeProperties("ro.build.version.sdk=" + QByteArray::number(level) + '\n'));
        QCOMPARE(ApkConfig::knownSdkVersion(), level);
    }
    QCOMPARE(ApkConfig::sdkVersion(), 29);
    QVERIFY(writeProperties("ro.build.version.sdk=30\n"));
    QCOMPARE(ApkConfig::knownSdkVersion(), 29);
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestSdkVersion)
#include "tst_sdkversion.moc"
