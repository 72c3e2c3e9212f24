// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>

using namespace LauncherFiles;

namespace {

const QString &entryFile()
{
    static const QString path = QStringLiteral("/usr/share/applications/a.desktop");
    return path;
}

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QString updatingLine()
{
    return logLine("debug", QStringLiteral("Updating: \"%1\"").arg(entryFile()));
}

} // namespace

// The short ways, which look at the bytes of the file and do not take it apart.
class TestDesktopEntryBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueIsReadTheSameWithoutAnObject_data();
    void valueIsReadTheSameWithoutAnObject();
    void missingValueReadWithoutAnObjectIsNullWithAWarning();
    void textThatIsTheFileChangesNothing();
    void allKeysOfATextAreSet_data();
    void allKeysOfATextAreSet();
};

void TestDesktopEntryBytes::valueIsReadTheSameWithoutAnObject_data()
{
    QTest::addColumn<QByteArray>("lines"); // behind the header
    QTest::addColumn<QString>("value");
    const auto row = [](const char *name, const QByteArray &lines, const QString &value) {
        QTest::newRow(name) << lines << value;
    };

    row("only key", "Name=x\n", text("x"));
    row("no line feed at the end", "Name=x", text("x"));
    row("among others", "A=1\nName=x\nZ=2\n", text("x"));
    row("carriage return", "Name=x\r\n", text("x"));
    row("carriage return at the end", "Name=x\r", text("x"));
    row("empty", "Name=\n", text(""));
    row("empty at the end", "Name=", text(""));
    row("last of two", "Name=x\nName=y\n", text("y"));
    row("key within another", "Name=x\nMyName=y\nNames=z\nName[de]=w\n", text("x"));
    row("key behind one more character", "Name=x\nXName=y\n", text("x"));
    row("key behind two more characters", "Name=x\nXXName=y\n", text("x"));
    row("equals sign four bytes before the key", "K=ab\nName=x\n", text("x"));
    row("key as a value", "Name=x\nOther=Name=y\n", text("x"));
    row("equals signs", "Name=a=b=\n", text("a=b="));
    row("blanks", "Name= x \n", text(" x "));
    row("key without a value last", "Name=x\nName", text("x"));
    row("not ASCII", "Name=M\xc3\xa4p\n", text("M\xc3\xa4p"));
    row("no UTF-8", "Name=\xff\n", text("\xef\xbf\xbd"));
    row("byte order mark", "Name=\xef\xbb\xbfx\n", QChar(0xfeff) + text("x"));
    row("NUL", QByteArray("Name=a\0b\n", 9), text("a") + QChar(0) + text("b"));
    row("others that are no UTF-8", "\xff=\xfe\nName=x\n", text("x"));
}

void TestDesktopEntryBytes::valueIsReadTheSameWithoutAnObject()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, value);

    // The short way knows the first header alone.
    for (const char *header :
        {"[Desktop Entry]\n", "# comment\n[Desktop Entry]\n", "[Desktop Entry]\r\n"}) {
        write(entryFile(), header + lines);
        const LogCapture log;
        const QString found = DesktopEntry::readValue(entryFile(), "Name");
        QCOMPARE(found, value);
        QVERIFY(!found.isNull());
        QCOMPARE(DesktopEntry(entryFile()).value(text("Name")), value);
        QCOMPARE(log.lines(), QStringList());
    }
}

void TestDesktopEntryBytes::missingValueReadWithoutAnObjectIsNullWithAWarning()
{
    const QString warning = logLine(
        "warning", QStringLiteral("File \"%1\" does not have key: \"Name\"").arg(entryFile()));
    LogCapture log;
    QVERIFY(DesktopEntry::readValue(entryFile(), "Name").isNull());
    QCOMPARE(log.take(), QStringList(warning));
    for (const char *contents : {"", "[Desktop Entry]\n", "[Desktop Entry]\nName", "Name=x\n",
             "Name=x\n[Desktop Entry]\nOther=y\n", "[Desktop Entry]\n Name=x\nname=x\nxName=x\n"}) {
        write(entryFile(), contents);
        QVERIFY(DesktopEntry::readValue(entryFile(), "Name").isNull());
        QCOMPARE(log.take(), QStringList(warning));
    }
}

void TestDesktopEntryBytes::textThatIsTheFileChangesNothing()
{
    const QByteArray bytes("[Desktop Entry]\nName=x\n");
    write(entryFile(), bytes);
    const Stamp before = stamp(entryFile());
    const LogCapture log;
    {
        DesktopEntry entry(entryFile());
        QVERIFY(entry.isSavedAs(bytes));
        QVERIFY(!entry.isSavedAs(bytes.chopped(1)));
        entry.setAll(bytes);
        QVERIFY(entry.isSavedAs(bytes));
    }
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(stamp(entryFile()) == before);
    DesktopEntry entry(entryFile());
    entry.setValue(text("Name"), text("y"));
    QVERIFY(!entry.isSavedAs(bytes));
}

void TestDesktopEntryBytes::allKeysOfATextAreSet_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    const QByteArray header("[Desktop Entry]\n");
    QTest::newRow("no file") << QByteArray() << header + "Name=x\nb=\xc3\xa4\n";
    QTest::newRow("the same in another order") << header + "b=\xc3\xa4\nName=x\n"
                                               << header + "b=\xc3\xa4\nName=x\n";
    QTest::newRow("the same with a comment") << header + "#\nName=x\nb=\xc3\xa4\n"
                                             << header + "#\nName=x\nb=\xc3\xa4\n";
    QTest::newRow("another value") << header + "Name=y\nb=\xc3\xa4\n"
                                   << header + "Name=x\nb=\xc3\xa4\n";
    QTest::newRow("foreign keys") << header + "#\nc=1\nA=2\nName=y\n"
                                  << header + "A=2\nName=x\nb=\xc3\xa4\nc=1\n";
    // By code units the surrogates come before the last of the 16-bit characters.
    QTest::newRow("keys beyond 16 bits")
        << header + "\xef\xbc\xa1=1\n\xf0\x9f\x98\x80=2\n\xee\x80\x80=3\n\xed\x9f\xbf=4\n"
        << header
            + "Name=x\nb=\xc3\xa4\n\xed\x9f\xbf=4\n\xf0\x9f\x98\x80=2\n\xee\x80\x80=3\n"
              "\xef\xbc\xa1=1\n";
}

void TestDesktopEntryBytes::allKeysOfATextAreSet()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);

    QFile::remove(entryFile());
    if (!before.isEmpty())
        write(entryFile(), before);
    const LogCapture log;
    DesktopEntry(entryFile()).setAll("[Desktop Entry]\nName=x\nb=\xc3\xa4\n");
    QCOMPARE(read(entryFile()), after);
    QCOMPARE(log.lines(), before == after ? QStringList() : QStringList(updatingLine()));
}

LUM_TEST_MAIN(TestDesktopEntryBytes)
#include "tst_desktopentrybytes.moc"
