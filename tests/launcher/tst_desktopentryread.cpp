// SPDX-License-Identifier: BSD-3-Clause
// Reading one value of an entry.
#include "launcher/desktopentry.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

using namespace LauncherFiles;

namespace {

const QString &entryFile()
{
    static const QString path = QStringLiteral("/usr/share/applications/a.desktop");
    return path;
}

QString text(const char *ascii)
{
    return QString::fromUtf8(ascii);
}

} // namespace

class TestDesktopEntryRead : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueIsReadTheSameWithoutAnObject_data();
    void valueIsReadTheSameWithoutAnObject();
    void missingValueReadWithoutAnObjectIsNullWithAWarning();
};

void TestDesktopEntryRead::valueIsReadTheSameWithoutAnObject_data()
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

void TestDesktopEntryRead::valueIsReadTheSameWithoutAnObject()
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

void TestDesktopEntryRead::missingValueReadWithoutAnObjectIsNullWithAWarning()
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

LUM_TEST_MAIN(TestDesktopEntryRead)
#include "tst_desktopentryread.moc"
