// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderparcel.h"
#include "tests/binder/androidpeer.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <limits>

using FakeBinder::ParcelWriter;
using Use = std::function<void(AlienBinderParcel &)>;
Q_DECLARE_METATYPE(Use)

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

/// A value and whether it is null, so that a null string and an empty one differ in a QCOMPARE.
QString shown(const QString &value)
{
    return value.isNull() ? QStringLiteral("(null)") : QLatin1Char('"') + value + QLatin1Char('"');
}

QStringList shown(const QStringList &values)
{
    QStringList list;
    for (const QString &value : values)
        list.append(shown(value));
    return list;
}

} // namespace

class TestAlienBinderParcelReads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void readsExactValues_data();
    void readsExactValues();
    void readsContinueOnTheReaderOfSomebodyElse();
    void readsRemoteRequestBehindItsHeader_data();
    void readsRemoteRequestBehindItsHeader();
    void readObjectGivesOneReference();
    void readObjectGivesNullForWhatIsNoObject_data();
    void readObjectGivesNullForWhatIsNoObject();
    void readByteArrayCopiesTheBytes();
    void byteArraySizeIsLoggedForDebuggingOnly();

private:
    AndroidPeer m_peer;
};

void TestAlienBinderParcelReads::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestAlienBinderParcelReads::readsExactValues_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<Use>("read");

    const auto row = [](const char *name, const char *digits, const Use &read) {
        QTest::newRow(name) << hex(digits) << read;
    };
    using P = AlienBinderParcel;
    row("true", "01000000", [](P &p) { QCOMPARE(p.readBool(), true); });
    row("false", "00000000", [](P &p) { QCOMPARE(p.readBool(), false); });
    row("any value but zero is true", "02000000", [](P &p) { QCOMPARE(p.readBool(), true); });
    row("int32", "04030201", [](P &p) { QCOMPARE(p.readInt32(), 0x01020304); });
    row("int32 -1", "ffffffff", [](P &p) { QCOMPARE(p.readInt32(), -1); });
    row("int32 min", "00000080",
        [](P &p) { QCOMPARE(p.readInt32(), std::numeric_limits<qint32>::min()); });
    row("int64", "0807060504030201",
        [](P &p) { QCOMPARE(p.readInt64(), qint64(0x0102030405060708)); });
    row("int64 -2", "feffffffffffffff", [](P &p) { QCOMPARE(p.readInt64(), qint64(-2)); });
    row("double", "000000000000f83f", [](P &p) { QCOMPARE(p.readDouble(), 1.5); });
    row("null string", "ffffffff",
        [](P &p) { QCOMPARE(shown(p.readString()), QStringLiteral("(null)")); });
    row("empty string", "0000000000000000",
        [](P &p) { QCOMPARE(shown(p.readString()), QStringLiteral("\"\"")); });
    row("string", "030000006100620063000000",
        [](P &p) { QCOMPARE(p.readString(), QStringLiteral("abc")); });
    row("string of a surrogate pair", "020000003dd800de00000000",
        [](P &p) { QCOMPARE(p.readString(), QStringLiteral(u"\U0001f600")); });
    row("string with a null character", "030000006100000062000000",
        [](P &p) { QCOMPARE(p.readString(), QString::fromLatin1("a\0b", 3)); });
    // QString::fromUtf16 takes a mark at the head for what it says of the byte order.
    row("string with a byte order mark", "02000000fffe61000000 0000",
        [](P &p) { QCOMPARE(p.readString(), QStringLiteral("a")); });
    row("string with a mark of the other byte order", "03000000feff00610062 0000",
        [](P &p) { QCOMPARE(p.readString(), QStringLiteral("ab")); });
    row("mark alone", "01000000fffe0000", [](P &p) { QCOMPARE(p.readString(), QString()); });
    row("mark behind the head", "020000006100fffe0000 0000", [](P &p) {
        QCOMPARE(p.readString(), QLatin1Char('a') + QString(QChar(QChar::ByteOrderMark)));
    });
    row("mark of the other byte order behind the head", "020000006100feff0000 0000", [](P &p) {
        QCOMPARE(p.readString(), QLatin1Char('a') + QString(QChar(QChar::ByteOrderSwapped)));
    });
    row("list", "03000000 0100000062000000 ffffffff 0100000061000000",
        [](P &p) { QCOMPARE(shown(p.readStringList()), texts({"\"b\"", "(null)", "\"a\""})); });
    row("empty list", "00000000", [](P &p) { QCOMPARE(p.readStringList(), QStringList()); });
    row("byte array", "0500000061626364 65000000",
        [](P &p) { QCOMPARE(p.readByteArray(), QByteArray("abcde")); });
    row("byte array of whole words", "0400000061626364",
        [](P &p) { QCOMPARE(p.readByteArray(), QByteArray("abcd")); });
    row("byte array with null bytes", "0200000000000000",
        [](P &p) { QCOMPARE(p.readByteArray(), QByteArray("\0\0", 2)); });
    row("empty byte array", "00000000", [](P &p) { QCOMPARE(p.readByteArray(), QByteArray()); });
    row("null byte array", "ffffffff", [](P &p) { QCOMPARE(p.readByteArray(), QByteArray()); });
    row("null object", "852a6273 00000000 0000000000000000 0000000000000000",
        [](P &p) { QCOMPARE(p.readObject(), nullptr); });
}

void TestAlienBinderParcelReads::readsExactValues()
{
    QFETCH(QByteArray, bytes);
    QFETCH(Use, read);

    // The word behind shows that the read consumed what it should.
    const QByteArray all = bytes + hex("2a000000");
    const bool isObject = bytes.startsWith(hex("852a6273"));
    m_peer.receive(
        all,
        [&read](AlienBinderParcel &parcel) {
            read(parcel);
            QCOMPARE(parcel.readInt32(), 42);
            QCOMPARE(parcel.readInt32(), -1);
        },
        isObject ? QVector<int>{0} : QVector<int>());
}

void TestAlienBinderParcelReads::readsContinueOnTheReaderOfSomebodyElse()
{
    m_peer.setReply(FakeBinder::Reply::data(ParcelWriter().int32(1).int32(2).int32(3).bytes()));
    const GBinder::LocalRequest request(gbinder_client_new_request(m_peer.client()));
    const GBinder::RemoteReply reply(
        gbinder_client_transact_sync_reply(m_peer.client(), 1, request.get(), nullptr));
    GBinderReader reader;
    gbinder_remote_reply_init_reader(reply.get(), &reader);
    qint32 value = 0;

    QVERIFY(gbinder_reader_read_int32(&reader, &value));
    QCOMPARE(value, 1);
    {
        AlienBinderParcel parcel(&reader);
        QCOMPARE(parcel.readInt32(), 2);
    }
    QVERIFY(gbinder_reader_read_int32(&reader, &value));
    QCOMPARE(value, 3);
}

void TestAlienBinderParcelReads::readsRemoteRequestBehindItsHeader_data()
{
    QTest::addColumn<int>("protocol");
    QTest::newRow("Android 8 and 9") << int(FakeBinder::Protocol::Aidl);
    QTest::newRow("Android 10") << int(FakeBinder::Protocol::Aidl2);
}

void TestAlienBinderParcelReads::readsRemoteRequestBehindItsHeader()
{
    QFETCH(int, protocol);
    FakeBinder::setProtocol(FakeBinder::Protocol(protocol));
    const GBinder::ServiceManager manager(gbinder_servicemanager_new("/dev/puddlejumper"));
    QVector<qint32> read;
    const auto readTwo = [](GBinderLocalObject *, GBinderRemoteRequest *request, guint, guint,
                             int *, void *data) -> GBinderLocalReply * {
        AlienBinderParcel in(request);
        *static_cast<QVector<qint32> *>(data) << in.readInt32() << in.readInt32();
        return nullptr;
    };
    const GBinder::LocalObject object(
        gbinder_servicemanager_new_local_object(manager.get(), "test.IObject", readTwo, &read));
    const GBinder::ServiceName name(
        gbinder_servicename_new(manager.get(), object.get(), "test.service"));

    FakeBinder::transact(QStringLiteral("test.service"),
        {1, QStringLiteral("test.IObject"), ParcelWriter().int32(9).bytes(), {}, 0, 0});

    QCOMPARE(read, (QVector<qint32>{9, -1}));
}

void TestAlienBinderParcelReads::readObjectGivesOneReference()
{
    const quint32 id = FakeBinder::newRemoteObject(QStringLiteral("token"));
    const ParcelWriter reply = ParcelWriter().remoteObject(id).int32(42);
    const QStringList before = FakeBinder::leaks();
    m_peer.receive(
        reply.bytes(),
        [](AlienBinderParcel &parcel) {
            GBinderRemoteObject *const object = parcel.readObject();
            QVERIFY(object);
            QVERIFY(FakeBinder::leaks().contains(QStringLiteral("remote_object token")));
            QCOMPARE(parcel.readInt32(), 42);
            gbinder_remote_object_unref(object);
        },
        reply.offsets());
    QCOMPARE(FakeBinder::leaks(), before);
}

void TestAlienBinderParcelReads::readObjectGivesNullForWhatIsNoObject_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("too short") << hex("852a6873 00000000 00000000");
    QTest::newRow("not listed as an object")
        << hex("852a6873 00000000 0100000000000000 0000000000000000");
    QTest::newRow("words") << hex("01000000 02000000 03000000 04000000 05000000 06000000");
}

void TestAlienBinderParcelReads::readObjectGivesNullForWhatIsNoObject()
{
    QFETCH(QByteArray, bytes);
    LogCapture log;
    m_peer.receive(
        bytes, [](AlienBinderParcel &parcel) { QCOMPARE(parcel.readObject(), nullptr); });
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelReads::readByteArrayCopiesTheBytes()
{
    m_peer.setReply(FakeBinder::Reply::data(ParcelWriter().byteArray("abc").bytes()));
    const GBinder::LocalRequest request(gbinder_client_new_request(m_peer.client()));
    const GBinder::RemoteReply reply(
        gbinder_client_transact_sync_reply(m_peer.client(), 1, request.get(), nullptr));
    GBinderReader reader;
    gbinder_remote_reply_init_reader(reply.get(), &reader);
    const void *const bytesOfTheReply = gbinder_reader_read_byte_array(&reader, nullptr);
    AlienBinderParcel parcel(reply.get());

    const QByteArray value = parcel.readByteArray();

    QCOMPARE(value, QByteArray("abc"));
    QVERIFY(bytesOfTheReply);
    QVERIFY(static_cast<const void *>(value.constData()) != bytesOfTheReply);
}

void TestAlienBinderParcelReads::byteArraySizeIsLoggedForDebuggingOnly()
{
    const QByteArray bytes = ParcelWriter().byteArray("abc").bytes();
    const auto read = [](AlienBinderParcel &parcel) { parcel.readByteArray(); };
    {
        LogCapture log;
        m_peer.receive(bytes, read);
        QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.parcel ByteArray size read:  3"}));
    }
    LogCapture log(LogCapture::Level::Default);
    m_peer.receive(bytes, read);
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestAlienBinderParcelReads)
#include "tst_alienbinderparcelreads.moc"
