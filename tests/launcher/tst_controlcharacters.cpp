// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/controlcharacters.h"

#include "tests/support/testmain.h"

class TestControlCharacters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theseBecomeBlanks_data();
    void theseBecomeBlanks();
    void theseStay_data();
    void theseStay();
    void eachOfATextBecomesABlank();
    void nullTextStaysNull();
};

void TestControlCharacters::theseBecomeBlanks_data()
{
    QTest::addColumn<uint>("character");

    for (const uint character :
        {0x00u, 0x09u, 0x0au, 0x0du, 0x1bu, 0x1fu, 0x7fu, 0x80u, 0x85u, 0x9fu, 0x2028u, 0x2029u})
        QTest::addRow("U+%04X", character) << character;
}

void TestControlCharacters::theseBecomeBlanks()
{
    QFETCH(uint, character);

    const QString text = QStringLiteral("a") + QChar(character);
    QVERIFY(holdsControlCharacters(text));
    QCOMPARE(withoutControlCharacters(text), QStringLiteral("a "));
}

void TestControlCharacters::theseStay_data()
{
    QTest::addColumn<uint>("character");

    for (const uint character : {0x20u, 0x21u, 0x2fu, 0x3du, 0x7eu, 0xa0u, 0xadu, 0x200fu, 0x2027u,
             0x202au, 0xd800u, 0xdc00u, 0xfeffu, 0xffffu})
        QTest::addRow("U+%04X", character) << character;
}

void TestControlCharacters::theseStay()
{
    QFETCH(uint, character);

    const QString text = QStringLiteral("a") + QChar(character);
    QVERIFY(!holdsControlCharacters(text));
    QCOMPARE(withoutControlCharacters(text), text);
}

void TestControlCharacters::eachOfATextBecomesABlank()
{
    const QString text = QStringLiteral("\r\nMaps\tof\u0085 \u2028\U0001f600");
    QCOMPARE(withoutControlCharacters(text), QStringLiteral("  Maps of   \U0001f600"));
}

void TestControlCharacters::nullTextStaysNull()
{
    QVERIFY(!holdsControlCharacters({}));
    QVERIFY(withoutControlCharacters({}).isNull());
    QVERIFY(!withoutControlCharacters(QStringLiteral("")).isNull());
}

LUM_TEST_MAIN(TestControlCharacters)
#include "tst_controlcharacters.moc"
