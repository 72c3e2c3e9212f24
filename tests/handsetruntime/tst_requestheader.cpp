// SPDX-License-Identifier: BSD-3-Clause
#include "androidparcel.h"
#include "requestheader.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;

class TestRequestHeader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headerIsRead_data();
    void headerIsRead();
    void wrongHeaderIsRefused_data();
    void wrongHeaderIsRefused();
    void headerIsWrittenAsAndroidDoes_data();
    void headerIsWrittenAsAndroidDoes();
};

void TestRequestHeader::headerIsRead_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<qint32>("strictMode");
    QTest::addColumn<QByteArray>("workSource");
    QTest::newRow("27") << 27 << 0x400000 << QByteArray();
    QTest::newRow("28 with a policy") << 28 << 0x400025 << QByteArray();
    QTest::newRow("27 without the bit of its level") << 27 << 0 << QByteArray();
    QTest::newRow("29") << 29 << qint32(0x80000000) << word(-1);
    QTest::newRow("29 with the bit of the levels before") << 29 << 0x400000 << word(-1);
    QTest::newRow("29 with a work source") << 29 << qint32(0x80000000) << word(10000);
}

void TestRequestHeader::headerIsRead()
{
    QFETCH(int, sdk);
    QFETCH(qint32, strictMode);
    QFETCH(QByteArray, workSource);
    AndroidParcel parcel(word(strictMode) + workSource + string16(QStringLiteral("abc")) + word(7));
    const RequestHeader header = RequestHeader::read(parcel, sdk, QStringLiteral("abc"));
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(header.strictMode, strictMode);
    QCOMPARE(header.interface, QStringLiteral("abc"));
    QCOMPARE(parcel.readInt32(), 7);
}

void TestRequestHeader::wrongHeaderIsRefused_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<QString>("error");
    QTest::newRow("another interface")
        << 27 << QByteArray("0000400003000000610062006400000007000000")
        << QStringLiteral("interface is \"abd\" before offset 16 of 20");
    QTest::newRow("null interface") << 27 << QByteArray("00004000ffffffff07000000")
                                    << QStringLiteral("interface is \"\" before offset 8 of 12");
    QTest::newRow("29 without work source")
        << 29 << QByteArray("0000400003000000610062006300000007000000")
        << QStringLiteral("12845252 bytes wanted before offset 12 of 20");
    QTest::newRow("28 with work source")
        << 28 << QByteArray("00004000ffffffff03000000610062006300000007000000")
        << QStringLiteral("interface is \"\" before offset 8 of 24");
}

void TestRequestHeader::wrongHeaderIsRefused()
{
    QFETCH(int, sdk);
    QFETCH(QByteArray, hex);
    QFETCH(QString, error);
    AndroidParcel parcel(QByteArray::fromHex(hex));
    RequestHeader::read(parcel, sdk, QStringLiteral("abc"));
    QCOMPARE(parcel.error(), error);
}

void TestRequestHeader::headerIsWrittenAsAndroidDoes_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QByteArray>("hex");
    QTest::newRow("27") << 27 << QByteArray("00004000030000006100620063000000");
    QTest::newRow("28") << 28 << QByteArray("00004000030000006100620063000000");
    QTest::newRow("29") << 29 << QByteArray("00000080ffffffff030000006100620063000000");
}

void TestRequestHeader::headerIsWrittenAsAndroidDoes()
{
    QFETCH(int, sdk);
    QFETCH(QByteArray, hex);
    QCOMPARE(RequestHeader::toParcel(sdk, QStringLiteral("abc")).toHex(), hex);
}

QTEST_APPLESS_MAIN(TestRequestHeader)
#include "tst_requestheader.moc"
