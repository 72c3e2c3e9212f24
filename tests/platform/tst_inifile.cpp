// SPDX-License-Identifier: BSD-3-Clause
#include "inifile.h"

#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QSettings>

#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char path[] = "/run/test.conf";
const QString key = QStringLiteral("group/key");

void removeFile()
{
    if (unlink(path) != 0 && errno != ENOENT && rmdir(path) != 0)
        qFatal("cannot remove %s", path);
}

/// Always with the same times.
void setText(const QByteArray &text)
{
    QFile file(QString::fromLatin1(path));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", path);
    file.close();
    const std::array<timespec, 2> times{};
    if (utimensat(AT_FDCWD, path, times.data(), 0) != 0)
        qFatal("cannot set the times of %s", path);
}

int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

} // namespace

class TestIniFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void valueIsWhatQSettingsReads_data();
    void valueIsWhatQSettingsReads();
    void fileIsReadAtEachCall();
    void whatIsNoRegularFileIsRefused_data();
    void whatIsNoRegularFileIsRefused();
    void linkToAFileIsFollowed();
    void emptyFileHasNoValue();
    void nothingStaysOpen();
};

void TestIniFile::cleanup()
{
    removeFile();
}

void TestIniFile::valueIsWhatQSettingsReads_data()
{
    QTest::addColumn<QByteArray>("text");
    const std::array<const char *, 16> texts{"[group]\nkey=value\n", "[group]\nkey=1, two ,3\n",
        "[group]\nkey=\"a, b\"\n", "[group]\nkey=\"a\", \"b;c\"\n", "[group]\nkey=a;b\n",
        "[group]\n;key=a\n#key=b\nkey=c\n", "[group]\nkey=\\x41\\n\\t\\\"\\\\\n",
        "[group]\nkey=\xe4\xf6\n", "[group]\nkey=a\nkey=b\n", "[group]\r\nkey=a\r\n",
        "[group]\nkey = spaced out \n", "[group]\nkey=first \\\nsecond\n",
        "[GROUP]\nkey=a\n[%67roup]\nkey=b\n", "[group]\nkey=@ByteArray(ab)\n",
        "[group]\nkey=@Variant(\\0\\0\\0\\x2\\0\\0\\0*)\n", "[group]\nkey"};
    for (const char *text : texts)
        QTest::newRow(text) << QByteArray(text);
}

void TestIniFile::valueIsWhatQSettingsReads()
{
    QFETCH(QByteArray, text);
    setText(text);
    // A name of its own, so that it has not been read before.
    const QString copy = QStringLiteral("/run/%1.conf").arg(qHash(text));
    QVERIFY(QFile::copy(QString::fromLatin1(path), copy));
    const QVariant expected = QSettings(copy, QSettings::IniFormat).value(key);

    const QVariant value = iniValue(path, key);

    QCOMPARE(value.isValid(), expected.isValid());
    QCOMPARE(value.type(), expected.type());
    QCOMPARE(value, expected);
}

void TestIniFile::fileIsReadAtEachCall()
{
    for (int i = 0; i < 3; ++i) {
        setText("[group]\nkey=1\n");
        QCOMPARE(iniValue(path, key).toString(), QStringLiteral("1"));
        setText("[group]\nkey=0\n");
        QCOMPARE(iniValue(path, key).toString(), QStringLiteral("0"));
    }
    removeFile();
    QVERIFY(!iniValue(path, key).isValid());
}

void TestIniFile::whatIsNoRegularFileIsRefused_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"nothing", "FIFO", "directory", "device", "link to nothing"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void TestIniFile::whatIsNoRegularFileIsRefused()
{
    QFETCH(QString, kind);
    setText("[group]\nkey=1\n");
    QVERIFY(iniValue(path, key).isValid());
    removeFile();
    int made = 0;
    if (kind == QLatin1String("FIFO"))
        made = mkfifo(path, 0600);
    else if (kind == QLatin1String("directory"))
        made = mkdir(path, 0700);
    else if (kind == QLatin1String("device"))
        made = symlink("/dev/zero", path);
    else if (kind == QLatin1String("link to nothing"))
        made = symlink("/run/missing", path);
    QCOMPARE(made, 0);

    QVERIFY(!iniValue(path, key).isValid());
}

void TestIniFile::linkToAFileIsFollowed()
{
    setText("[group]\nkey=1\n");
    QCOMPARE(rename(path, "/run/other.conf"), 0);
    QCOMPARE(symlink("/run/other.conf", path), 0);
    QCOMPARE(iniValue(path, key).toString(), QStringLiteral("1"));
}

void TestIniFile::emptyFileHasNoValue()
{
    setText("[group]\nkey=1\n");
    QVERIFY(iniValue(path, key).isValid());
    setText(QByteArray());
    QVERIFY(!iniValue(path, key).isValid());
}

void TestIniFile::nothingStaysOpen()
{
    setText("[group]\nkey=1\n");
    const int before = openDescriptors();
    for (int i = 0; i < 5; ++i)
        iniValue(path, key);
    QCOMPARE(openDescriptors(), before);
}

LUM_TEST_MAIN(TestIniFile)
#include "tst_inifile.moc"
