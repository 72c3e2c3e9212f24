// SPDX-License-Identifier: BSD-3-Clause
#include "androidparcel.h"

#include <QtTest>

Q_DECLARE_METATYPE(AndroidParcel::Binder::Kind)

using Read = void (*)(AndroidParcel &);
Q_DECLARE_METATYPE(Read)

namespace {

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

class TestAndroidParcel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAreReadInOrder();
    void string16IsRead_data();
    void string16IsRead();
    void byteArrayIsRead_data();
    void byteArrayIsRead();
    void objectIsRead_data();
    void objectIsRead();
    void wrongBytesAreRefused_data();
    void wrongBytesAreRefused();
    void unreadBytesAreAFailure();
    void firstFailureIsKept();
    void objectMustBeOneThatTheDriverRecorded();
    void parcelInsideIsReadByItself();
};

void TestAndroidParcel::valuesAreReadInOrder()
{
    AndroidParcel parcel(bytes("feffffff"
                               "0102030405060708"
                               "01000000"
                               "00000000"
                               "000000000000f8bf"));
    QCOMPARE(parcel.position(), qint64(0));
    QCOMPARE(parcel.readInt32(), -2);
    QCOMPARE(parcel.readInt64(), qint64(0x0807060504030201));
    QCOMPARE(parcel.readBool(), true);
    QCOMPARE(parcel.readBool(), false);
    QCOMPARE(parcel.readDouble(), -1.5);
    QCOMPARE(parcel.position(), qint64(28));
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
}

void TestAndroidParcel::string16IsRead_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isNull");
    QTest::newRow("null") << bytes("ffffffff") << QString() << true;
    QTest::newRow("empty") << bytes("00000000"
                                    "00000000")
                           << QString() << false;
    QTest::newRow("empty, as libgbinder pads it") << bytes("00000000"
                                                           "0000ffff")
                                                  << QString() << false;
    QTest::newRow("odd length needs no padding") << bytes("01000000"
                                                          "61000000")
                                                 << QStringLiteral("a") << false;
    QTest::newRow("even length is padded") << bytes("02000000"
                                                    "e4003dd8"
                                                    "00000000")
                                           << QString::fromUtf16(u"\u00e4\xd83d") << false;
}

void TestAndroidParcel::string16IsRead()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, text);
    QFETCH(bool, isNull);
    AndroidParcel parcel(data);
    const QString read = parcel.readString16();
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(read, text);
    QCOMPARE(read.isNull(), isNull);
}

void TestAndroidParcel::byteArrayIsRead_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("array");
    QTest::addColumn<bool>("isNull");
    QTest::newRow("null") << bytes("ffffffff") << QByteArray() << true;
    QTest::newRow("empty") << bytes("00000000") << QByteArray() << false;
    QTest::newRow("padded") << bytes("05000000"
                                     "0102030405000000")
                            << bytes("0102030405") << false;
    QTest::newRow("whole words") << bytes("04000000"
                                          "01020304")
                                 << bytes("01020304") << false;
}

void TestAndroidParcel::byteArrayIsRead()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, array);
    QFETCH(bool, isNull);
    AndroidParcel parcel(data);
    const QByteArray read = parcel.readByteArray();
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(read, array);
    QCOMPARE(read.isNull(), isNull);
}

void TestAndroidParcel::objectIsRead_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<AndroidParcel::Binder::Kind>("kind");
    QTest::addColumn<quint32>("handle");
    QTest::newRow("null") << bytes("852a6273"
                                   "00000000"
                                   "0000000000000000"
                                   "0000000000000000")
                          << AndroidParcel::Binder::Kind::Null << 0U;
    QTest::newRow("null with flags") << bytes("852a6273"
                                              "7f010000"
                                              "0000000000000000"
                                              "0000000000000000")
                                     << AndroidParcel::Binder::Kind::Null << 0U;
    QTest::newRow("remote") << bytes("852a6873"
                                     "7f010000"
                                     "0700000000000000"
                                     "0000000000000000")
                            << AndroidParcel::Binder::Kind::Remote << 7U;
    QTest::newRow("local") << bytes("852a6273"
                                    "7f010000"
                                    "1000000000000000"
                                    "2000000000000000")
                           << AndroidParcel::Binder::Kind::Local << 0U;
}

void TestAndroidParcel::objectIsRead()
{
    QFETCH(QByteArray, data);
    QFETCH(AndroidParcel::Binder::Kind, kind);
    QFETCH(quint32, handle);
    AndroidParcel parcel(data);
    const AndroidParcel::Binder object = parcel.readBinder();
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(object.kind, kind);
    QCOMPARE(object.handle, handle);
}

void TestAndroidParcel::wrongBytesAreRefused_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<Read>("read");
    QTest::addColumn<QString>("error");
    const Read int32 = [](AndroidParcel &parcel) { parcel.readInt32(); };
    const Read int64 = [](AndroidParcel &parcel) { parcel.readInt64(); };
    const Read boolean = [](AndroidParcel &parcel) { parcel.readBool(); };
    const Read string16 = [](AndroidParcel &parcel) { parcel.readString16(); };
    const Read byteArray = [](AndroidParcel &parcel) { parcel.readByteArray(); };
    const Read binder = [](AndroidParcel &parcel) { parcel.readBinder(); };
    QTest::newRow("int32 without data")
        << bytes("") << int32 << QStringLiteral("4 bytes wanted before offset 0 of 0");
    QTest::newRow("int32 cut short")
        << bytes("010000") << int32 << QStringLiteral("4 bytes wanted before offset 0 of 3");
    QTest::newRow("int64 cut short")
        << bytes("01000000") << int64 << QStringLiteral("8 bytes wanted before offset 0 of 4");
    QTest::newRow("bool of 2") << bytes("02000000") << boolean
                               << QStringLiteral("bool is 2 before offset 4 of 4");
    QTest::newRow("string16 of negative length") << bytes(
        "feffffff") << string16 << QStringLiteral("string16 of length -2 before offset 4 of 4");
    QTest::newRow("string16 longer than the parcel") << bytes(
        "02000000"
        "61006200") << string16 << QStringLiteral("8 bytes wanted before offset 4 of 8");
    QTest::newRow("string16 of the greatest length") << bytes(
        "ffffff7f"
        "61006200") << string16 << QStringLiteral("4294967296 bytes wanted before offset 4 of 8");
    QTest::newRow("string16 without terminator")
        << bytes("01000000"
                 "61006200")
        << string16 << QStringLiteral("string16 without terminator before offset 8 of 8");
    QTest::newRow("empty string16 without terminator")
        << bytes("00000000"
                 "ffffffff")
        << string16 << QStringLiteral("empty string16 without terminator before offset 8 of 8");
    QTest::newRow("empty string16 with other padding")
        << bytes("00000000"
                 "00000100")
        << string16 << QStringLiteral("empty string16 without terminator before offset 8 of 8");
    QTest::newRow("string16 with padding that is not zero") << bytes(
        "02000000"
        "61006200"
        "00000100") << string16 << QStringLiteral("padding is not zero before offset 12 of 12");
    QTest::newRow("byte array of negative length") << bytes(
        "feffffff") << byteArray << QStringLiteral("byte array of length -2 before offset 4 of 4");
    QTest::newRow("byte array without its padding") << bytes(
        "05000000"
        "0102030405") << byteArray << QStringLiteral("8 bytes wanted before offset 4 of 9");
    QTest::newRow("byte array with padding that is not zero") << bytes(
        "01000000"
        "01000002") << byteArray << QStringLiteral("padding is not zero before offset 8 of 8");
    QTest::newRow("object cut short") << bytes(
        "852a6873"
        "7f010000") << binder << QStringLiteral("24 bytes wanted before offset 0 of 8");
    QTest::newRow("object of an unknown type")
        << bytes("852a6477"
                 "7f010000"
                 "0700000000000000"
                 "0000000000000000")
        << binder << QStringLiteral("object of type 0x77642a85 before offset 24 of 24");
}

void TestAndroidParcel::wrongBytesAreRefused()
{
    QFETCH(QByteArray, data);
    QFETCH(Read, read);
    QFETCH(QString, error);
    AndroidParcel parcel(data);
    read(parcel);
    QCOMPARE(parcel.error(), error);
}

void TestAndroidParcel::unreadBytesAreAFailure()
{
    AndroidParcel parcel(bytes("01000000"
                               "02000000"));
    QCOMPARE(parcel.readInt32(), 1);
    parcel.finish();
    QCOMPARE(parcel.error(), QStringLiteral("4 bytes left unread before offset 4 of 8"));
}

void TestAndroidParcel::firstFailureIsKept()
{
    AndroidParcel parcel(bytes("02000000"
                               "05000000"));
    parcel.readBool();
    QCOMPARE(parcel.readInt32(), 0);
    parcel.finish();
    QCOMPARE(parcel.error(), QStringLiteral("bool is 2 before offset 4 of 8"));
}

void TestAndroidParcel::objectMustBeOneThatTheDriverRecorded()
{
    const QByteArray data = bytes("00000000"
                                  "852a6873"
                                  "7f010000"
                                  "0700000000000000"
                                  "0000000000000000");
    AndroidParcel recorded(data, QVector<quint64>{4});
    recorded.readInt32();
    const AndroidParcel::Binder object = recorded.readBinder();
    QCOMPARE(object.handle, 7U);
    QCOMPARE(object.offset, qint64(4));
    QCOMPARE(recorded.error(), QString());

    AndroidParcel notRecorded(data, QVector<quint64>{0});
    notRecorded.readInt32();
    QCOMPARE(notRecorded.readBinder().kind, AndroidParcel::Binder::Kind::Null);
    QCOMPARE(notRecorded.error(),
        QStringLiteral("object that the driver did not record before offset 28 of 28"));
}

void TestAndroidParcel::parcelInsideIsReadByItself()
{
    AndroidParcel parcel(bytes("0100000002000000"
                               "03000000"));
    AndroidParcel inside = parcel.readParcel(8);
    QCOMPARE(parcel.readInt32(), 3);
    QCOMPARE(inside.readInt32(), 1);
    inside.finish();
    QCOMPARE(inside.error(), QStringLiteral("4 bytes left unread before offset 4 of 8"));
    parcel.readParcel(4);
    QCOMPARE(parcel.error(), QStringLiteral("4 bytes wanted before offset 12 of 12"));
}

QTEST_APPLESS_MAIN(TestAndroidParcel)
#include "tst_androidparcel.moc"
