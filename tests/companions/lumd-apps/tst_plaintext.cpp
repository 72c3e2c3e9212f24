// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/plaintext.h"
#include "tests/support/testmain.h"

class TestPlainText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsHarmless_data();
    void textIsHarmless();
    void lengthIsBounded();
    void pairsOfSurrogatesStayTogether();
    void bytesAreReadable_data();
    void bytesAreReadable();
};

void TestPlainText::textIsHarmless_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char *name, const QString &text, const QString &shown) {
        QTest::newRow(name) << text << shown;
    };
    row("empty", QString(), QString());
    row("markup", QStringLiteral("<b>a</b> &amp;"), QStringLiteral("<b>a</b> &amp;"));
    row("line feed", QStringLiteral("a\nb"), QStringLiteral("a\u240ab"));
    row("escape", QStringLiteral("\x1b[2J"), QStringLiteral("\u241b[2J"));
    row("nul", QString(1, QChar(0)), QStringLiteral("\u2400"));
    row("delete", QStringLiteral("\x7f"), QStringLiteral("\u2421"));
    row("C1", QString(QChar(0x9b)), QStringLiteral("\ufffd"));
    row("no break space", QStringLiteral("a\u00a0b"), QStringLiteral("a\u00a0b"));
    row("line separator", QStringLiteral("a\u2028b\u2029"), QStringLiteral("a\ufffdb\ufffd"));
    row("override", QStringLiteral("a\u202egpj.\u202cb"), QStringLiteral("agpj.b"));
    row("isolate", QStringLiteral("\u2067a\u2069"), QStringLiteral("a"));
    row("right to left", QStringLiteral("\u05e9\u05dc\u05d5\u05dd\u200f"),
        QStringLiteral("\u05e9\u05dc\u05d5\u05dd\u200f"));
    row("emoji", QStringLiteral("\U0001F468\u200d\U0001F469"),
        QStringLiteral("\U0001F468\u200d\U0001F469"));
}

void TestPlainText::textIsHarmless()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(shownText(text), shown);
}

void TestPlainText::lengthIsBounded()
{
    QCOMPARE(shownText(QString(200, QLatin1Char('a'))), QString(200, QLatin1Char('a')));
    const QString cut = QString(200, QLatin1Char('a')) + QChar(0x2026);
    QCOMPARE(shownText(QString(201, QLatin1Char('a'))), cut);
    QCOMPARE(shownText(QString(5000, QLatin1Char('a'))), cut);
    QCOMPARE(shownText(QStringLiteral("abc"), 2), QStringLiteral("ab\u2026"));
}

void TestPlainText::pairsOfSurrogatesStayTogether()
{
    const QString smile = QStringLiteral("\U0001F600");
    QCOMPARE(shownText(smile + smile, 1), smile + QChar(0x2026));
}

void TestPlainText::bytesAreReadable_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << qint64(0) << QStringLiteral("0 bytes");
    QTest::newRow("negative") << qint64(-5) << QStringLiteral("0 bytes");
    QTest::newRow("kilo") << qint64(1500) << QStringLiteral("1.5 kB");
    QTest::newRow("giga") << qint64(1234567890) << QStringLiteral("1.2 GB");
}

void TestPlainText::bytesAreReadable()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    QCOMPARE(shownBytes(bytes), text);
}

LUM_TEST_MAIN(TestPlainText)
#include "tst_plaintext.moc"
