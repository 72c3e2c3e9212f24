// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using Style = FakeBinder::ParcelWriter::Style;

class TestParcelWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheBytesOfAndroid_data();
    void writesTheBytesOfAndroid();
    void objectsAreRecorded();
    void whatWasWrittenIsRead();
    void damagedBytesAreRefused_data();
    void damagedBytesAreRefused();
    void aBadReaderStaysBad();
};

void TestParcelWriter::writesTheBytesOfAndroid_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("expected");
    const QString empty = QStringLiteral("");
    QTest::newRow("int32") << ParcelWriter().int32(-2).bytes() << QByteArray("feffffff");
    QTest::newRow("int64") << ParcelWriter().int64(-2).bytes() << QByteArray("feffffffffffffff");
    QTest::newRow("true") << ParcelWriter().boolean(true).bytes() << QByteArray("01000000");
    QTest::newRow("false") << ParcelWriter().boolean(false).bytes() << QByteArray("00000000");
    QTest::newRow("double") << ParcelWriter().real64(1.5).bytes() << QByteArray("000000000000f83f");
    QTest::newRow("null string") << ParcelWriter().string16({}).bytes() << QByteArray("ffffffff");
    QTest::newRow("empty string") << ParcelWriter().string16(empty).bytes()
                                  << QByteArray("0000000000000000");
    QTest::newRow("empty string, gbinder")
        << ParcelWriter(Style::Gbinder).string16(empty).bytes() << QByteArray("000000000000ffff");
    QTest::newRow("padded string") << ParcelWriter().string16(QStringLiteral("a\u00e9")).bytes()
                                   << QByteArray("020000006100e90000000000");
    QTest::newRow("full string") << ParcelWriter().string16(QStringLiteral("a")).bytes()
                                 << QByteArray("0100000061000000");
    QTest::newRow("strings") << ParcelWriter().string16List({QStringLiteral("a"), {}}).bytes()
                             << QByteArray("020000000100000061000000ffffffff");
    QTest::newRow("bytes") << ParcelWriter().byteArray("abcde").bytes()
                           << QByteArray("050000006162636465000000");
    QTest::newRow("bytes, gbinder") << ParcelWriter(Style::Gbinder).byteArray("abcde").bytes()
                                    << QByteArray("050000006162636465ffffff");
    QTest::newRow("null bytes") << ParcelWriter().byteArray({}).bytes() << QByteArray("ffffffff");
    QTest::newRow("no bytes") << ParcelWriter().byteArray("").bytes() << QByteArray("00000000");
    QTest::newRow("no bytes, gbinder")
        << ParcelWriter(Style::Gbinder).byteArray("").bytes() << QByteArray("ffffffff");
    QTest::newRow("raw") << ParcelWriter().raw("ab").bytes() << QByteArray("6162");
    QTest::newRow("null object") << ParcelWriter().nullObject().bytes()
                                 << QByteArray("852a6273").append(QByteArray(40, '0'));
}

void TestParcelWriter::writesTheBytesOfAndroid()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, expected);
    QCOMPARE(bytes.toHex(), expected);
}

void TestParcelWriter::objectsAreRecorded()
{
    const ParcelWriter writer =
        ParcelWriter().int32(1).localObject(2).nullObject().remoteObject(1000);
    QCOMPARE(writer.offsets(), (QVector<int>{4, 52}));
    QCOMPARE(writer.bytes().mid(4, 24).toHex(),
        QByteArray("852a62737f01000002000000000000000000000000000000"));
    QCOMPARE(writer.bytes().mid(52).toHex(),
        QByteArray("852a687300010000e8030000000000000000000000000000"));
}

void TestParcelWriter::whatWasWrittenIsRead()
{
    ParcelReader reader(ParcelWriter()
            .int32(-7)
            .int64(1LL << 40)
            .boolean(true)
            .real64(0.5)
            .string16(QStringLiteral("a\u00e9"))
            .nullString16()
            .string16(QStringLiteral(""))
            .string16List({QStringLiteral("x"), QStringLiteral("y")})
            .byteArray("abcde")
            .nullByteArray()
            .localObject(3)
            .remoteObject(1000)
            .nullObject()
            .bytes());
    QCOMPARE(reader.int32(), -7);
    QCOMPARE(reader.int64(), 1LL << 40);
    QCOMPARE(reader.boolean(), true);
    QCOMPARE(reader.real64(), 0.5);
    QCOMPARE(reader.string16(), QStringLiteral("a\u00e9"));
    QVERIFY(reader.string16().isNull());
    const QString empty = reader.string16();
    QVERIFY(empty.isEmpty() && !empty.isNull());
    QCOMPARE(reader.string16List(), (QStringList{QStringLiteral("x"), QStringLiteral("y")}));
    QCOMPARE(reader.byteArray(), QByteArray("abcde"));
    QVERIFY(reader.byteArray().isNull());
    const ParcelReader::Object local = reader.object();
    QVERIFY(!local.isNull && local.isLocal && local.id == 3);
    const ParcelReader::Object remote = reader.object();
    QVERIFY(!remote.isNull && !remote.isLocal && remote.id == 1000);
    QVERIFY(reader.object().isNull);
    QVERIFY(reader.isDone());
}

void TestParcelWriter::damagedBytesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("kind");
    QTest::newRow("short int32") << QByteArray("ab") << 0;
    QTest::newRow("short int64") << QByteArray("abcdefg") << 1;
    QTest::newRow("bool of two") << ParcelWriter().int32(2).bytes() << 2;
    QTest::newRow("string of length -2") << ParcelWriter().int32(-2).int32(0).bytes() << 3;
    QTest::newRow("string too long") << ParcelWriter().int32(100).int32(0).bytes() << 3;
    QTest::newRow("string of the greatest length")
        << ParcelWriter().int32(0x7fffffff).int32(0).bytes() << 3;
    QTest::newRow("string without its end")
        << ParcelWriter().int32(1).raw(QByteArray("a\0b\0", 4)).bytes() << 3;
    QTest::newRow("string without padding")
        << ParcelWriter().int32(2).raw(QByteArray("a\0b\0\0\0", 6)).bytes() << 3;
    QTest::newRow("bytes too long") << ParcelWriter().int32(9).int32(0).bytes() << 4;
    QTest::newRow("bytes of length -2") << ParcelWriter().int32(-2).bytes() << 4;
    QTest::newRow("short object") << QByteArray(20, '\0') << 5;
    QTest::newRow("object of no kind") << QByteArray(24, '\0') << 5;
}

void TestParcelWriter::damagedBytesAreRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, kind);
    ParcelReader reader(bytes);
    switch (kind) {
    case 0:
        QCOMPARE(reader.int32(), 0);
        break;
    case 1:
        QCOMPARE(reader.int64(), 0);
        break;
    case 2:
        QCOMPARE(reader.boolean(), false);
        break;
    case 3:
        QVERIFY(reader.string16().isNull());
        break;
    case 4:
        QVERIFY(reader.byteArray().isNull());
        break;
    default:
        QVERIFY(reader.object().isNull);
    }
    QVERIFY(reader.isBad());
}

void TestParcelWriter::aBadReaderStaysBad()
{
    ParcelReader reader(ParcelWriter().int32(-2).int32(5).bytes());
    reader.string16();
    QVERIFY(reader.isBad());
    QCOMPARE(reader.int32(), 0);
    QVERIFY(!reader.isDone());
}

LUM_TEST_MAIN(TestParcelWriter)
#include "tst_parcelwriter.moc"
