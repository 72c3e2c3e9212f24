// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderparcel.h"
#include "tests/binder/androidpeer.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

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

void writeEverything(AlienBinderParcel &parcel)
{
    parcel.writeBool(true);
    parcel.writeInt32(1);
    parcel.writeInt64(2);
    parcel.writeDouble(3.0);
    parcel.writeString(QStringLiteral("a"));
    parcel.writeStringList({QStringLiteral("b")});
    parcel.writeByteArray("c");
    parcel.writeLocalObject(nullptr);
    parcel.writeRemoteObject(nullptr);
}

} // namespace

class TestAlienBinderParcelWrites : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void writesExactBytes_data();
    void writesExactBytes();
    void writesLocalObject();
    void writesRemoteObject();
    void writesFollowEachOther();
    void writesContinueOnTheWriterOfSomebodyElse();
    void writesIntoLocalReply();
    void parcelOwnsNothing();

private:
    AndroidPeer m_peer;
};

void TestAlienBinderParcelWrites::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestAlienBinderParcelWrites::writesExactBytes_data()
{
    QTest::addColumn<Use>("write");
    QTest::addColumn<QByteArray>("bytes");

    const auto row = [](const char *name, const Use &write, const char *digits) {
        QTest::newRow(name) << write << hex(digits);
    };
    using P = AlienBinderParcel;
    row("true", [](P &p) { p.writeBool(true); }, "01000000");
    row("false", [](P &p) { p.writeBool(false); }, "00000000");

    row("int32", [](P &p) { p.writeInt32(0x01020304); }, "04030201");
    row("int32 0", [](P &p) { p.writeInt32(0); }, "00000000");
    row("int32 -1", [](P &p) { p.writeInt32(-1); }, "ffffffff");
    row("int32 max", [](P &p) { p.writeInt32(std::numeric_limits<qint32>::max()); }, "ffffff7f");
    row("int32 min", [](P &p) { p.writeInt32(std::numeric_limits<qint32>::min()); }, "00000080");

    row("int64", [](P &p) { p.writeInt64(0x0102030405060708); }, "0807060504030201");
    row("int64 -2", [](P &p) { p.writeInt64(-2); }, "feffffffffffffff");
    row(
        "int64 max", [](P &p) { p.writeInt64(std::numeric_limits<qint64>::max()); },
        "ffffffffffffff7f");
    row(
        "int64 min", [](P &p) { p.writeInt64(std::numeric_limits<qint64>::min()); },
        "0000000000000080");

    row("double 1.5", [](P &p) { p.writeDouble(1.5); }, "000000000000f83f");
    row("double -0.0", [](P &p) { p.writeDouble(-0.0); }, "0000000000000080");
    row(
        "double inf", [](P &p) { p.writeDouble(std::numeric_limits<double>::infinity()); },
        "000000000000f07f");

    row("null string", [](P &p) { p.writeString(QString()); }, "ffffffff");
    row("empty string", [](P &p) { p.writeString(QStringLiteral("")); }, "000000000000ffff");
    row("string 1", [](P &p) { p.writeString(QStringLiteral("a")); }, "0100000061000000");
    row("string 2", [](P &p) { p.writeString(QStringLiteral("ab")); }, "02000000610062000000 0000");
    row("string 3", [](P &p) { p.writeString(QStringLiteral("abc")); }, "030000006100620063000000");
    row(
        "string beyond ASCII", [](P &p) { p.writeString(QStringLiteral(u"\u00e4\u20ac")); },
        "02000000e400ac2000000000");
    row(
        "string of a surrogate pair", [](P &p) { p.writeString(QStringLiteral(u"\U0001f600")); },
        "020000003dd800de00000000");
    row(
        "string with a lone surrogate", [](P &p) { p.writeString(QString(QChar(0xd83d))); },
        "010000003dd80000");
    row(
        "string with a null character", [](P &p) { p.writeString(QString::fromLatin1("a\0b", 3)); },
        "030000006100000062000000");
    row(
        "part of a string", [](P &p) { p.writeString(QStringLiteral("xay").mid(1, 1)); },
        "0100000061000000");

    row("empty list", [](P &p) { p.writeStringList({}); }, "00000000");
    row(
        "list of one", [](P &p) { p.writeStringList({QStringLiteral("a")}); },
        "010000000100000061000000");
    row(
        "list in its order with null and empty elements",
        [](P &p) {
            p.writeStringList(
                {QStringLiteral("b"), QString(), QStringLiteral(""), QStringLiteral("a")});
        },
        "04000000 0100000062000000 ffffffff 000000000000ffff 0100000061000000");

    row("byte array 1", [](P &p) { p.writeByteArray("a"); }, "0100000061ffffff");
    row("byte array 4", [](P &p) { p.writeByteArray("abcd"); }, "0400000061626364");
    row("byte array 5", [](P &p) { p.writeByteArray("abcde"); }, "050000006162636465ffffff");
    row(
        "byte array with null bytes", [](P &p) { p.writeByteArray(QByteArray("\0\0", 2)); },
        "020000000000ffff");
    row("empty byte array", [](P &p) { p.writeByteArray(""); }, "ffffffff");
    row("null byte array", [](P &p) { p.writeByteArray({}); }, "ffffffff");

    row(
        "null local object", [](P &p) { p.writeLocalObject(nullptr); },
        "852a6273 00000000 0000000000000000 0000000000000000");
    row(
        "null remote object", [](P &p) { p.writeRemoteObject(nullptr); },
        "852a6273 00000000 0000000000000000 0000000000000000");
}

void TestAlienBinderParcelWrites::writesExactBytes()
{
    QFETCH(Use, write);
    QFETCH(QByteArray, bytes);

    const FakeBinder::Request request = m_peer.send(write);

    QCOMPARE(request.payload.toHex(' '), bytes.toHex(' '));
    QCOMPARE(request.offsets, QVector<int>());
}

void TestAlienBinderParcelWrites::writesLocalObject()
{
    const GBinder::ServiceManager manager(gbinder_servicemanager_new("/dev/puddlejumper"));
    const GBinder::LocalObject object(gbinder_servicemanager_new_local_object(
        manager.get(), "test.IObject",
        [](GBinderLocalObject *, GBinderRemoteRequest *, guint, guint, int *,
            void *) -> GBinderLocalReply * { return nullptr; },
        nullptr));

    const FakeBinder::Request request = m_peer.send([&object](AlienBinderParcel &parcel) {
        parcel.writeInt32(5);
        parcel.writeLocalObject(object.get());
    });

    QCOMPARE(request.localObjects.size(), 1);
    const ParcelWriter expected = ParcelWriter().int32(5).localObject(request.localObjects.first());
    QCOMPARE(request.payload.toHex(' '), expected.bytes().toHex(' '));
    const int header = request.bytes.size() - request.payload.size();
    QCOMPARE(request.offsets, QVector<int>{header + 4});
}

void TestAlienBinderParcelWrites::writesRemoteObject()
{
    const quint32 id = FakeBinder::newRemoteObject(QStringLiteral("token"));
    const ParcelWriter reply = ParcelWriter().remoteObject(id);
    GBinder::RemoteObject object;
    m_peer.receive(
        reply.bytes(), [&object](AlienBinderParcel &parcel) { object.reset(parcel.readObject()); },
        reply.offsets());

    const FakeBinder::Request request = m_peer.send(
        [&object](AlienBinderParcel &parcel) { parcel.writeRemoteObject(object.get()); });

    QCOMPARE(request.payload.left(4), hex("852a6873"));
    QCOMPARE(request.payload.mid(8).toHex(' '), reply.bytes().mid(8).toHex(' '));
    QCOMPARE(request.offsets, QVector<int>{request.bytes.size() - request.payload.size()});
}

void TestAlienBinderParcelWrites::writesFollowEachOther()
{
    const FakeBinder::Request request = m_peer.send(&writeEverything);

    const QByteArray expected = ParcelWriter(ParcelWriter::Style::Gbinder)
                                    .boolean(true)
                                    .int32(1)
                                    .int64(2)
                                    .real64(3.0)
                                    .string16(QStringLiteral("a"))
                                    .string16List({QStringLiteral("b")})
                                    .byteArray("c")
                                    .nullObject()
                                    .nullObject()
                                    .bytes();
    QCOMPARE(request.payload.toHex(' '), expected.toHex(' '));
}

void TestAlienBinderParcelWrites::writesContinueOnTheWriterOfSomebodyElse()
{
    const GBinder::LocalRequest request(gbinder_client_new_request(m_peer.client()));
    GBinderWriter writer;
    gbinder_local_request_init_writer(request.get(), &writer);
    gbinder_writer_append_int32(&writer, 1);
    {
        AlienBinderParcel parcel(&writer);
        parcel.writeInt32(2);
    }
    gbinder_writer_append_int32(&writer, 3);
    const GBinder::RemoteReply reply(
        gbinder_client_transact_sync_reply(m_peer.client(), 1, request.get(), nullptr));

    QCOMPARE(
        FakeBinder::requests().last().payload, ParcelWriter().int32(1).int32(2).int32(3).bytes());
}

void TestAlienBinderParcelWrites::writesIntoLocalReply()
{
    const GBinder::ServiceManager manager(gbinder_servicemanager_new("/dev/puddlejumper"));
    const auto answerSeven = [](GBinderLocalObject *self, GBinderRemoteRequest *, guint, guint,
                                 int *status, void *) {
        GBinderLocalReply *const reply = gbinder_local_object_new_reply(self);
        AlienBinderParcel out(reply);
        out.writeInt32(7);
        *status = 0;
        return reply;
    };
    const GBinder::LocalObject object(gbinder_servicemanager_new_local_object(
        manager.get(), "test.IObject", answerSeven, nullptr));
    const GBinder::ServiceName name(
        gbinder_servicename_new(manager.get(), object.get(), "test.service"));

    const FakeBinder::Answer answer = FakeBinder::transact(
        QStringLiteral("test.service"), {1, QStringLiteral("test.IObject"), {}, {}, 0, 0});

    QVERIFY(answer.hasReply);
    QCOMPARE(answer.bytes, hex("07000000"));
}

void TestAlienBinderParcelWrites::parcelOwnsNothing()
{
    const GBinder::LocalRequest request(gbinder_client_new_request(m_peer.client()));
    const QStringList ledger = FakeBinder::ledger();
    const QStringList leaks = FakeBinder::leaks();
    {
        AlienBinderParcel parcel(request.get());
        parcel.writeInt32(1);
    }
    QCOMPARE(FakeBinder::ledger(), ledger);
    QCOMPARE(FakeBinder::leaks(), leaks);
}

LUM_TEST_MAIN(TestAlienBinderParcelWrites)
#include "tst_alienbinderparcelwrites.moc"
