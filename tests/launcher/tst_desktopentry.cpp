// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>

#include <sys/stat.h>

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

// What would be an entry, were the encoding guessed.
QByteArray inUtf16(QSysInfo::Endian order)
{
    QByteArray bytes;
    const QString guessed = QChar(QChar::ByteOrderMark) + text("[Desktop Entry]\na=1\n");
    for (const QChar character : guessed) {
        const bool isLittle = order == QSysInfo::LittleEndian;
        bytes += char(isLittle ? character.cell() : character.row());
        bytes += char(isLittle ? character.row() : character.cell());
    }
    return bytes;
}

void setName(const char *value)
{
    DesktopEntry(entryFile()).setValue(text("Name"), text(value));
}

} // namespace

class TestDesktopEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadedKeysAreSavedInOrder_data();
    void loadedKeysAreSavedInOrder();
    void newEntryIsWrittenWithItsKeysInOrder();
    void valueReadsBackWhole_data();
    void valueReadsBackWhole();
    void valueOfAMissingKeyIsNullWithAWarning();
    void entryWithoutAChangeIsNotRewritten();
    void removedAndSetAgainIsRewritten();
    void removedKeyIsGone();
    void entryOfNoKeysIsTheHeaderAlone();
    void missingFileIsAnEmptyEntryInSilence();
    void newFileHasTheUsualMode();
    void controlCharactersInAValueBecomeBlanks();
    void carriageReturnAtALinesEndGoesWithTheLine();
};

// What a file holds is seen through what is written back after a change.
void TestDesktopEntry::loadedKeysAreSavedInOrder_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after"); // without the header and the added "zzz"
    const auto row = [](const char *name, const QByteArray &before, const char *after) {
        QTest::newRow(name) << before << QByteArray(after);
    };

    row("empty file", "", "");
    row("header alone", "[Desktop Entry]\n", "");
    row("no header", "a=1\nb=2\n", "");
    row("keys before the header", "a=1\n[Desktop Entry]\nb=2\n", "b=2\n");
    row("leading blank before the header", " [Desktop Entry]\na=1\n", "");
    row("trailing blank behind the header", "[Desktop Entry] \na=1\n", "");
    row("header in other case", "[desktop entry]\na=1\n", "");
    row("header behind a line that does not match", " [Desktop Entry]\na=1\n[Desktop Entry]\nb=2\n",
        "b=2\n");
    row("header twice", "[Desktop Entry]\na=1\n[Desktop Entry]\nb=2\n", "a=1\nb=2\n");
    row("upper case before lower case", "[Desktop Entry]\nb=1\na=2\nB=3\nA=4\n",
        "A=4\nB=3\na=2\nb=1\n");
    row("comment", "[Desktop Entry]\n# a comment\na=1\n", "a=1\n");
    row("comment with an equals sign", "[Desktop Entry]\n# a=b\na=1\n", "# a=b\na=1\n");
    row("blank lines", "[Desktop Entry]\n\na=1\n\n", "a=1\n");
    row("further section", "[Desktop Entry]\na=1\n[Desktop Action x]\nb=2\n", "a=1\nb=2\n");
    row("section header with an equals sign", "[Desktop Entry]\n[x=y]\n", "[x=y]\n");
    row("last value of a key", "[Desktop Entry]\na=1\na=2\n", "a=2\n");
    row("last value across sections", "[Desktop Entry]\na=1\n[x]\na=2\n", "a=2\n");
    row("equals signs in a value", "[Desktop Entry]\na=b=c==\n", "a=b=c==\n");
    row("blanks around the equals sign", "[Desktop Entry]\na = 1\n", "a = 1\n");
    row("blanks around the line", "[Desktop Entry]\n  a=1  \n", "  a=1  \n");
    row("empty value", "[Desktop Entry]\na=\n", "a=\n");
    row("empty key", "[Desktop Entry]\n=1\n", "=1\n");
    row("locale in a key", "[Desktop Entry]\nName[de]=x\n", "Name[de]=x\n");
    row("no line feed at the end", "[Desktop Entry]\na=1", "a=1\n");
    row("not ASCII", "[Desktop Entry]\na=\xc3\xa4\xe6\xbc\xa2\xf0\x9f\x98\x80\n",
        "a=\xc3\xa4\xe6\xbc\xa2\xf0\x9f\x98\x80\n");
    row("bytes that are no UTF-8", "[Desktop Entry]\na=\xff\n", "a=\xef\xbf\xbd\n");
    row("placeholders", "[Desktop Entry]\n%1=%2\n%2=%1\n", "%1=%2\n%2=%1\n");
    row("carriage returns", "[Desktop Entry]\r\na=1\r\nb=\r\r\nc\r=2\n", "a=1\nb=\r\nc\r=2\n");
    row("byte order mark before the header", "\xef\xbb\xbf[Desktop Entry]\na=1\n", "a=1\n");
    row("byte order mark before a value", "[Desktop Entry]\ny=\xef\xbb\xbfx\na=1\n",
        "a=1\ny=\xef\xbb\xbfx\n");
    row("byte order mark within a key", "[Desktop Entry]\ny\xef\xbb\xbf=x\n", "y\xef\xbb\xbf=x\n");
    row("line cut within a character", "[Desktop Entry]\na=\xe6\nb=\xe6\xbc\nc=1\n",
        "a=\xef\xbf\xbd\nb=\xef\xbf\xbd\xef\xbf\xbd\nc=1\n");
    row("surrogate and overlong form", "[Desktop Entry]\na=\xed\xa0\x80\nb=\xc0\x8a=\n",
        "a=\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\nb=\xef\xbf\xbd\xef\xbf\xbd=\n");
    row("key that is no UTF-8, twice", "[Desktop Entry]\na\xff=1\na\xfe=2\n", "a\xef\xbf\xbd=2\n");
    row("UTF-8 behind UTF-16's mark", QByteArray("\xff\xfe[Desktop Entry]\na=1\n"), "");
    row("UTF-16 is not guessed", inUtf16(QSysInfo::LittleEndian), "");
    row("UTF-16 of the other order is not guessed", inUtf16(QSysInfo::BigEndian), "");
}

void TestDesktopEntry::loadedKeysAreSavedInOrder()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);

    write(entryFile(), before);
    const LogCapture log;
    DesktopEntry(entryFile()).setValue(text("zzz"), text("added"));
    QCOMPARE(read(entryFile()), "[Desktop Entry]\n" + after + "zzz=added\n");
    QCOMPARE(log.lines(), QStringList(updatingLine()));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("a.desktop")));
}

void TestDesktopEntry::newEntryIsWrittenWithItsKeysInOrder()
{
    LogCapture log;
    {
        DesktopEntry entry(entryFile());
        entry.setValue(text("Type"), text("Application"));
        entry.setValue(text("X-b"), text("%1 %2"));
        entry.setValue(text("X-Z"), text("\xc3\xa4"));
        entry.setValue(text("Name"), text("one"));
        entry.setValue(text("Name"), text("two"));
        QCOMPARE(entry.value(text("Name")), text("two"));
        QVERIFY(!QFile::exists(entryFile()));
        QCOMPARE(log.lines(), QStringList());
    }
    QCOMPARE(read(entryFile()),
        QByteArray("[Desktop Entry]\nName=two\nType=Application\nX-Z=\xc3\xa4\nX-b=%1 %2\n"));
    QCOMPARE(log.lines(), QStringList(updatingLine()));
    QCOMPARE(listing(folder()), QStringList(QStringLiteral("a.desktop")));
}

void TestDesktopEntry::valueReadsBackWhole_data()
{
    QTest::addColumn<QString>("value");

    QTest::newRow("plain") << text("Maps");
    QTest::newRow("equals signs") << text("a=b==c");
    QTest::newRow("empty") << text("");
    QTest::newRow("blanks") << text("  a b  ");
    QTest::newRow("not ASCII") << text("\xc3\xa4\xe6\xbc\xa2\xf0\x9f\x98\x80");
    QTest::newRow("placeholders") << text("%1%2");
    QTest::newRow("header") << text("[Desktop Entry]");
}

void TestDesktopEntry::valueReadsBackWhole()
{
    QFETCH(QString, value);

    DesktopEntry(entryFile()).setValue(text("Name"), value);
    const Stamp before = stamp(entryFile());
    const LogCapture log;
    {
        DesktopEntry entry(entryFile());
        QCOMPARE(entry.value(text("Name")), value);
        entry.setValue(text("Name"), value);
    }
    QVERIFY(stamp(entryFile()) == before);
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopEntry::valueOfAMissingKeyIsNullWithAWarning()
{
    write(entryFile(), "[Desktop Entry]\na=1\n");
    const Stamp before = stamp(entryFile());
    const QString warning = logLine(
        "warning", QStringLiteral("File \"%1\" does not have key: \"Name\"").arg(entryFile()));
    const LogCapture log;
    {
        const DesktopEntry entry(entryFile());
        QVERIFY(entry.value(text("Name")).isNull());
        QVERIFY(entry.value(text("Name")).isNull());
        QCOMPARE(entry.value(text("a")), text("1"));
    }
    QCOMPARE(log.lines(), QStringList({warning, warning}));
    QVERIFY(stamp(entryFile()) == before);
}

void TestDesktopEntry::entryWithoutAChangeIsNotRewritten()
{
    // Not what would be written: a rewrite would show in the bytes too.
    const QByteArray bytes("# comment\n[Desktop Entry]\nb=2\na=1\n");
    write(entryFile(), bytes);
    const Stamp before = stamp(entryFile());
    const LogCapture log;
    {
        DesktopEntry entry(entryFile());
        entry.setValue(text("a"), text("1"));
        entry.setValue(text("b"), text("2"));
        entry.remove(text("c"));
    }
    QVERIFY(stamp(entryFile()) == before);
    QCOMPARE(read(entryFile()), bytes);
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopEntry::removedAndSetAgainIsRewritten()
{
    write(entryFile(), "[Desktop Entry]\na=1\n");
    const Stamp before = stamp(entryFile());
    const LogCapture log;
    {
        DesktopEntry entry(entryFile());
        entry.remove(text("a"));
        entry.setValue(text("a"), text("1"));
    }
    QVERIFY(stamp(entryFile()).inode != before.inode);
    QCOMPARE(read(entryFile()), QByteArray("[Desktop Entry]\na=1\n"));
    QCOMPARE(log.lines(), QStringList(updatingLine()));
}

void TestDesktopEntry::removedKeyIsGone()
{
    write(entryFile(), "[Desktop Entry]\na=1\nb=2\n");
    DesktopEntry(entryFile()).remove(text("a"));
    QCOMPARE(read(entryFile()), QByteArray("[Desktop Entry]\nb=2\n"));
}

void TestDesktopEntry::entryOfNoKeysIsTheHeaderAlone()
{
    write(entryFile(), "[Desktop Entry]\na=1\n");
    DesktopEntry(entryFile()).remove(text("a"));
    QCOMPARE(read(entryFile()), QByteArray("[Desktop Entry]\n"));
}

void TestDesktopEntry::missingFileIsAnEmptyEntryInSilence()
{
    const LogCapture log;
    {
        DesktopEntry entry(entryFile());
        entry.remove(text("a"));
    }
    QVERIFY(!QFile::exists(entryFile()));
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopEntry::newFileHasTheUsualMode()
{
    umask(022);
    setName("x");
    QCOMPARE(mode(entryFile()), 0644u);
}

void TestDesktopEntry::controlCharactersInAValueBecomeBlanks()
{
    setName("x\nExec=evil\r\t\xc2\x85");
    QCOMPARE(read(entryFile()), QByteArray("[Desktop Entry]\nName=x Exec=evil   \n"));
    const Stamp before = stamp(entryFile());
    setName("x\nExec=evil\r\t\xc2\x85");
    QVERIFY(stamp(entryFile()) == before);
    setName("x Exec=evil   ");
    QVERIFY(stamp(entryFile()) == before);
}

// It is no part of the value, and goes at the next save.
void TestDesktopEntry::carriageReturnAtALinesEndGoesWithTheLine()
{
    const QByteArray bytes("[Desktop Entry]\r\nName=x\r\nOther=y\r\n");
    write(entryFile(), bytes);
    setName("x");
    QCOMPARE(read(entryFile()), bytes);
    setName("z");
    QCOMPARE(read(entryFile()), QByteArray("[Desktop Entry]\nName=z\nOther=y\n"));
}

LUM_TEST_MAIN(TestDesktopEntry)
#include "tst_desktopentry.moc"
