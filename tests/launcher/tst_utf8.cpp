// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/utf8.h"

#include "tests/support/testmain.h"

#include <QStringList>

class TestUtf8 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asciiIsTold_data();
    void asciiIsTold();
    void everyByteCounts();
    void orderIsThatOfQString();
    void keyOfAsciiIsTheText();
};

void TestUtf8::asciiIsTold_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isAscii");

    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("all of ASCII") << QByteArray("\0 ~\x7f", 4) << true;
    QTest::newRow("last byte beyond") << QByteArray("aaaaaaaa\x80") << false;
    QTest::newRow("first byte beyond") << QByteArray("\xff") + "a" << false;
}

void TestUtf8::asciiIsTold()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isAscii);

    QCOMPARE(Utf8::isAscii(Utf8::view(bytes)), isAscii);
}

void TestUtf8::everyByteCounts()
{
    for (int size = 1; size <= 25; ++size) {
        const QByteArray ascii(size, 'a');
        QVERIFY(Utf8::isAscii(Utf8::view(ascii)));
        for (int place = 0; place < size; ++place) {
            QByteArray bytes = ascii;
            bytes[place] = '\x80';
            QVERIFY2(!Utf8::isAscii(Utf8::view(bytes)), qPrintable(QString::number(place)));
        }
    }
}

// Every pair of texts whose first difference is between characters of one to four bytes.
void TestUtf8::orderIsThatOfQString()
{
    QStringList texts{QString()};
    for (const uint character : {0x00u, 0x41u, 0x7fu, 0x80u, 0x7ffu, 0x800u, 0xd7ffu, 0xe000u,
             0xefffu, 0xf000u, 0xffffu, 0x10000u, 0x1f600u, 0x40000u, 0x10ffffu}) {
        const QString text = QString::fromUcs4(&character, 1);
        texts << text << QLatin1String("a") + text << text + QLatin1String("a") << text + text;
    }
    for (const QString &left : qAsConst(texts)) {
        for (const QString &right : qAsConst(texts)) {
            const QByteArray leftBytes = left.toUtf8();
            const QByteArray rightBytes = right.toUtf8();
            QCOMPARE(Utf8::isBefore(Utf8::view(leftBytes), Utf8::view(rightBytes)), left < right);
            QCOMPARE(Utf8::sortKey(Utf8::view(leftBytes)) < Utf8::sortKey(Utf8::view(rightBytes)),
                left < right);
        }
    }
}

void TestUtf8::keyOfAsciiIsTheText()
{
    QCOMPARE(Utf8::sortKey("a.B_c"), std::string("a.B_c"));
}

LUM_TEST_MAIN(TestUtf8)
#include "tst_utf8.moc"
