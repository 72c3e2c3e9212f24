// SPDX-License-Identifier: BSD-3-Clause
#include "androidparcel.h"
#include "requestheader.h"

#include <QtTest>

class TestRequestHeader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headerIsChecked_data();
    void headerIsChecked();
};

void TestRequestHeader::headerIsChecked_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<QString>("error");
    QTest::newRow("27") << 27 << QByteArray("0000400003000000610062006300000007000000")
                        << QString();
    QTest::newRow("28") << 28 << QByteArray("0000400003000000610062006300000007000000")
                        << QString();
    QTest::newRow("29") << 29 << QByteArray("00004000ffffffff03000000610062006300000007000000")
                        << QString();
    QTest::newRow("another strict mode word")
        << 27 << QByteArray("0100400003000000610062006300000007000000")
        << QStringLiteral("strict mode word is 0x00400001 before offset 4 of 20");
    QTest::newRow("another interface")
        << 27 << QByteArray("0000400003000000610062006400000007000000")
        << QStringLiteral("interface is \"abd\" before offset 16 of 20");
    QTest::newRow("null interface") << 27 << QByteArray("00004000ffffffff07000000")
                                    << QStringLiteral("interface is \"\" before offset 8 of 12");
    QTest::newRow("another work source")
        << 29 << QByteArray("000040000000000003000000610062006300000007000000")
        << QStringLiteral("work source is 0 before offset 8 of 24");
    QTest::newRow("29 without work source")
        << 29 << QByteArray("0000400003000000610062006300000007000000")
        << QStringLiteral("work source is 3 before offset 8 of 20");
    QTest::newRow("28 with work source")
        << 28 << QByteArray("00004000ffffffff03000000610062006300000007000000")
        << QStringLiteral("interface is \"\" before offset 8 of 24");
}

void TestRequestHeader::headerIsChecked()
{
    QFETCH(int, sdk);
    QFETCH(QByteArray, hex);
    QFETCH(QString, error);
    AndroidParcel parcel(QByteArray::fromHex(hex));
    const RequestHeader header = RequestHeader::read(parcel, sdk, QStringLiteral("abc"));
    QCOMPARE(parcel.error(), error);
    if (!error.isEmpty())
        return;
    QCOMPARE(header.strictMode, 0x400000);
    QCOMPARE(header.interface, QStringLiteral("abc"));
    QCOMPARE(parcel.readInt32(), 7);
}

QTEST_APPLESS_MAIN(TestRequestHeader)
#include "tst_requestheader.moc"
