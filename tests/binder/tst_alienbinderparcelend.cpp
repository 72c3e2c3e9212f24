// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderparcel.h"
#include "tests/binder/androidpeer.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

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

/// Every read, with what it gives at the end of the data.
void compareWithEndOfData(AlienBinderParcel &parcel)
{
    QCOMPARE(parcel.readBool(), false);
    QCOMPARE(parcel.readInt32(), -1);
    QCOMPARE(parcel.readInt64(), qint64(-1));
    QCOMPARE(parcel.readDouble(), -1.0);
    QCOMPARE(shown(parcel.readString()), QStringLiteral("(null)"));
    QCOMPARE(parcel.readStringList(), QStringList());
    QCOMPARE(parcel.readByteArray(), QByteArray());
    QCOMPARE(parcel.readObject(), nullptr);
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

class TestAlienBinderParcelEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void emptyParcelGivesTheEndOfDataValues_data();
    void emptyParcelGivesTheEndOfDataValues();
    void endOfDataGivesTheEndOfDataValues();
    void parcelBeingWrittenGivesTheEndOfDataValues();
    void parcelBeingReadSwallowsWrites();
    void emptyParcelSwallowsWrites();
    void refusedInt32IsReported_data();
    void refusedInt32IsReported();
    void otherRefusedReadsAreSilent_data();
    void otherRefusedReadsAreSilent();

private:
    AndroidPeer m_peer;
};

void TestAlienBinderParcelEnd::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestAlienBinderParcelEnd::emptyParcelGivesTheEndOfDataValues_data()
{
    QTest::addColumn<int>("constructor");
    QTest::newRow("no argument") << 0;
    QTest::newRow("null writer") << 1;
    QTest::newRow("null reader") << 2;
}

void TestAlienBinderParcelEnd::emptyParcelGivesTheEndOfDataValues()
{
    QFETCH(int, constructor);
    LogCapture log;
    if (constructor == 0) {
        AlienBinderParcel parcel;
        compareWithEndOfData(parcel);
    } else if (constructor == 1) {
        AlienBinderParcel parcel(static_cast<GBinderWriter *>(nullptr));
        compareWithEndOfData(parcel);
    } else {
        AlienBinderParcel parcel(static_cast<GBinderReader *>(nullptr));
        compareWithEndOfData(parcel);
    }
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelEnd::endOfDataGivesTheEndOfDataValues()
{
    LogCapture log;
    m_peer.receive(hex("05000000"), [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readInt32(), 5);
        compareWithEndOfData(parcel);
        compareWithEndOfData(parcel);
    });
    m_peer.receive({}, &compareWithEndOfData);
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelEnd::parcelBeingWrittenGivesTheEndOfDataValues()
{
    LogCapture log;
    const FakeBinder::Request request = m_peer.send([](AlienBinderParcel &parcel) {
        parcel.writeInt32(5);
        compareWithEndOfData(parcel);
        parcel.writeInt32(6);
    });
    QCOMPARE(request.payload, ParcelWriter().int32(5).int32(6).bytes());
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelEnd::parcelBeingReadSwallowsWrites()
{
    LogCapture log;
    m_peer.receive(hex("0500000006000000"), [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readInt32(), 5);
        writeEverything(parcel);
        QCOMPARE(parcel.readInt32(), 6);
        QCOMPARE(parcel.readInt32(), -1);
    });
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelEnd::emptyParcelSwallowsWrites()
{
    LogCapture log;
    const QStringList before = FakeBinder::ledger();
    AlienBinderParcel parcel;
    writeEverything(parcel);
    compareWithEndOfData(parcel);
    QCOMPARE(FakeBinder::ledger(), before);
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelEnd::refusedInt32IsReported_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("one byte left") << QByteArray("a");
    QTest::newRow("two bytes left") << QByteArray("ab");
    QTest::newRow("three bytes left") << QByteArray("abc");
}

void TestAlienBinderParcelEnd::refusedInt32IsReported()
{
    QFETCH(QByteArray, bytes);
    LogCapture log(LogCapture::Level::Default);
    m_peer.receive(bytes, [&log](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readInt32(), -1);
        QCOMPARE(log.take(), texts({"critical com.tovra.lumd.parcel Couldn't read result"}));
        // Nothing was consumed, so the next one is no read at the end either.
        QCOMPARE(parcel.readInt32(), -1);
        QCOMPARE(log.take(), texts({"critical com.tovra.lumd.parcel Couldn't read result"}));
    });
}

void TestAlienBinderParcelEnd::otherRefusedReadsAreSilent_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<Use>("read");

    using P = AlienBinderParcel;
    const Use readBool = [](P &p) { QCOMPARE(p.readBool(), false); };
    const Use readInt64 = [](P &p) { QCOMPARE(p.readInt64(), qint64(-1)); };
    const Use readDouble = [](P &p) { QCOMPARE(p.readDouble(), -1.0); };
    const Use readList = [](P &p) { QCOMPARE(p.readStringList(), QStringList()); };
    const Use readString = [](P &p) { QVERIFY(p.readString().isNull()); };
    const Use readObject = [](P &p) { QCOMPARE(p.readObject(), nullptr); };
    for (int size = 1; size < 8; ++size) {
        const QByteArray bytes(size, 'x');
        if (size < 4) {
            QTest::addRow("bool of %d bytes", size) << bytes << readBool;
            QTest::addRow("list of %d bytes", size) << bytes << readList;
            QTest::addRow("string of %d bytes", size) << bytes << readString;
        }
        QTest::addRow("int64 of %d bytes", size) << bytes << readInt64;
        QTest::addRow("double of %d bytes", size) << bytes << readDouble;
        QTest::addRow("object of %d bytes", size) << bytes << readObject;
    }
}

void TestAlienBinderParcelEnd::otherRefusedReadsAreSilent()
{
    QFETCH(QByteArray, bytes);
    QFETCH(Use, read);
    LogCapture log;
    m_peer.receive(bytes, read);
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestAlienBinderParcelEnd)
#include "tst_alienbinderparcelend.moc"
