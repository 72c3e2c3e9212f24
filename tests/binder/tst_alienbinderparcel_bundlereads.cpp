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

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

/// A bundle whose length is right.
QByteArray bundle(qint32 count, const ParcelWriter &entries)
{
    return ParcelWriter()
        .int32(entries.bytes().size() + 4)
        .raw("BNDL")
        .int32(count)
        .raw(entries.bytes())
        .bytes();
}

ParcelWriter writer(qint32 first)
{
    return ParcelWriter().int32(first);
}

} // namespace

class TestAlienBinderParcelBundleReads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void valueIsReadByItsTag_data();
    void valueIsReadByItsTag();
    void nullStringAndEmptyStringDiffer();
    void nullKeyAndEmptyKeyDiffer();
    void unsupportedTagIsInvalid_data();
    void unsupportedTagIsInvalid();
    void bundleIsReadWithItsNullEntries();
    void emptyBundleEndsBehindItsCount();
    void laterOneOfTwoEqualKeysWins();
    void writtenBundleIsReadBack();
    void writtenMapsAreReadBack();
    void mapAndIntMapAreRead();
    void mapsOfNoEntriesAreConsumed_data();
    void mapsOfNoEntriesAreConsumed();
    void everythingIsEmptyAtTheEnd();
    void everythingIsEmptyWithoutAReader();

private:
    AndroidPeer m_peer;
};

void TestAlienBinderParcelBundleReads::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestAlienBinderParcelBundleReads::valueIsReadByItsTag_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QVariant>("value");

    const auto row = [](const char *name, const ParcelWriter &bytes, const QVariant &value) {
        QTest::newRow(name) << bytes.bytes() << value;
    };
    row("null", writer(-1), QVariant());
    row("string", writer(0).string16(QStringLiteral("ab")), QStringLiteral("ab"));
    row("empty string", writer(0).string16(QStringLiteral("")), QStringLiteral(""));
    row("null string", writer(0).nullString16(), QString());
    row("int", writer(1).int32(-5), -5);
    row("long", writer(6).int64(std::numeric_limits<qint64>::min()),
        std::numeric_limits<qlonglong>::min());
    row("double", writer(8).real64(-0.25), -0.25);
    row("true", writer(9).boolean(true), true);
    row("true that is not 1", writer(9).int32(2), true);
    row("false", writer(9).boolean(false), false);
    row("strings", writer(14).string16List({b, a}), QStringList({b, a}));
    row("no strings", writer(14).int32(0), QStringList());
    row("null string array", writer(14).int32(-1), QStringList());
}

void TestAlienBinderParcelBundleReads::valueIsReadByItsTag()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QVariant, value);
    LogCapture log;
    // The value has taken all that is its own, and nothing more.
    m_peer.receive(bytes + ParcelWriter().int32(77).bytes(), [&value](AlienBinderParcel &parcel) {
        const QVariant read = parcel.readValue();
        QCOMPARE(read.userType(), value.userType());
        QCOMPARE(read, value);
        QCOMPARE(read.isNull(), value.isNull());
        QCOMPARE(parcel.readInt32(), 77);
    });
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelBundleReads::nullStringAndEmptyStringDiffer()
{
    const QByteArray bytes = writer(0).nullString16().int32(0).string16(QStringLiteral("")).bytes();
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) {
        const QVariant null = parcel.readValue();
        QVERIFY(null.isValid());
        QVERIFY(null.toString().isNull());
        const QVariant empty = parcel.readValue();
        QVERIFY(!empty.toString().isNull());
        QVERIFY(empty.toString().isEmpty());
    });
}

void TestAlienBinderParcelBundleReads::nullKeyAndEmptyKeyDiffer()
{
    for (const bool isNull : {true, false}) {
        ParcelWriter entries;
        if (isNull)
            entries.nullString16();
        else
            entries.string16(QStringLiteral(""));
        entries.int32(9).int32(1);
        m_peer.receive(bundle(1, entries) + (writer(1).raw(entries.bytes())).bytes(),
            [isNull](AlienBinderParcel &parcel) {
                QCOMPARE(parcel.readBundle().firstKey().isNull(), isNull);
                QCOMPARE(parcel.readMap().firstKey().isNull(), isNull);
            });
    }
}

void TestAlienBinderParcelBundleReads::unsupportedTagIsInvalid_data()
{
    QTest::addColumn<qint32>("tag");
    for (const qint32 tag :
        {-2, 2, 3, 4, 5, 7, 10, 11, 12, 13, 15, 0x4C444E42, std::numeric_limits<qint32>::min()})
        QTest::newRow(QByteArray::number(tag).constData()) << tag;
}

void TestAlienBinderParcelBundleReads::unsupportedTagIsInvalid()
{
    QFETCH(qint32, tag);
    LogCapture log(LogCapture::Level::Default);
    m_peer.receive(writer(tag).int32(77).bytes(), [](AlienBinderParcel &parcel) {
        QVERIFY(!parcel.readValue().isValid());
        // The payload was not skipped.
        QCOMPARE(parcel.readInt32(), 77);
    });
    QCOMPARE(log.lines(),
        QStringList(
            QStringLiteral("critical com.tovra.lumd.parcel Unsupported read bundle type! %1")
                .arg(tag)));
}

void TestAlienBinderParcelBundleReads::bundleIsReadWithItsNullEntries()
{
    ParcelWriter entries;
    entries.string16(b).int32(1).int32(5).string16(a).int32(-1).nullString16().int32(9).int32(1);
    LogCapture log;
    m_peer.receive(bundle(3, entries) + writer(77).bytes(), [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readBundle(), QVariantMap({{a, QVariant()}, {b, 5}, {QString(), true}}));
        QCOMPARE(parcel.readInt32(), 77);
    });
    QCOMPARE(log.lines(),
        texts({"debug com.tovra.lumd.parcel Bundle size:  3",
            "debug com.tovra.lumd.parcel Key:  \"b\" Value:  QVariant(int, 5)",
            "debug com.tovra.lumd.parcel Key:  \"a\" Value:  QVariant(Invalid)",
            "debug com.tovra.lumd.parcel Key:  \"\" Value:  QVariant(bool, true)"}));
}

void TestAlienBinderParcelBundleReads::emptyBundleEndsBehindItsCount()
{
    LogCapture log;
    m_peer.receive(bundle(0, ParcelWriter()) + writer(77).bytes(), [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readBundle(), QVariantMap());
        QCOMPARE(parcel.readInt32(), 77);
    });
    QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.parcel Bundle size:  0"}));
}

void TestAlienBinderParcelBundleReads::laterOneOfTwoEqualKeysWins()
{
    ParcelWriter entries;
    entries.string16(a).int32(1).int32(1).string16(a).int32(0).string16(b);
    m_peer.receive(bundle(2, entries),
        [](AlienBinderParcel &parcel) { QCOMPARE(parcel.readBundle(), QVariantMap({{a, b}})); });
}

void TestAlienBinderParcelBundleReads::writtenBundleIsReadBack()
{
    const QVariantMap sent{{QStringLiteral("bool"), true}, {QStringLiteral("double"), -2.5},
        {QStringLiteral("int"), -7}, {QStringLiteral("long"), qlonglong(1) << 40},
        {QStringLiteral("null"), QString()}, {QStringLiteral("string"), QStringLiteral(u"\u00e4")},
        {QStringLiteral("uint"), 4000000000U},
        {QStringLiteral("ulong"), std::numeric_limits<qulonglong>::max()}};
    QVariantMap expected = sent;
    expected[QStringLiteral("null")] = QVariant();
    expected[QStringLiteral("uint")] = -294967296;
    expected[QStringLiteral("ulong")] = qlonglong(-1);

    const FakeBinder::Request request =
        m_peer.send([&sent](AlienBinderParcel &parcel) { parcel.writeBundle(sent); });
    m_peer.receive(request.payload, [&expected](AlienBinderParcel &parcel) {
        const QVariantMap read = parcel.readBundle();
        QCOMPARE(read.keys(), expected.keys());
        for (auto it = read.cbegin(); it != read.cend(); ++it) {
            QCOMPARE(it->userType(), expected[it.key()].userType());
            QCOMPARE(*it, expected[it.key()]);
        }
    });
}

void TestAlienBinderParcelBundleReads::writtenMapsAreReadBack()
{
    const QVariantMap map{{a, 1}, {b, QStringLiteral("x")}};
    const QMap<int, QVariant> intMap{{-1, 1.5}, {7, QVariant()}};
    const FakeBinder::Request request = m_peer.send([&map, &intMap](AlienBinderParcel &parcel) {
        parcel.writeMap(map);
        parcel.writeIntMap(intMap);
    });
    m_peer.receive(request.payload, [&map, &intMap](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readMap(), map);
        QCOMPARE(parcel.readIntMap(), intMap);
    });
}

void TestAlienBinderParcelBundleReads::mapAndIntMapAreRead()
{
    ParcelWriter bytes;
    bytes.int32(2).string16(b).int32(1).int32(5).string16(a).int32(14).string16List({b});
    bytes.int32(2).int32(9).int32(-1).int32(-3).int32(6).int64(8);
    LogCapture log;
    m_peer.receive(bytes.bytes(), [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readMap(), QVariantMap({{a, QStringList(b)}, {b, 5}}));
        const QMap<int, QVariant> expected{{9, QVariant()}, {-3, qlonglong(8)}};
        QCOMPARE(parcel.readIntMap(), expected);
    });
    QCOMPARE(log.lines(),
        texts({"debug com.tovra.lumd.parcel Key:  \"b\" Value:  QVariant(int, 5)",
            "debug com.tovra.lumd.parcel Key:  \"a\" Value:  QVariant(QStringList, (\"b\"))",
            "debug com.tovra.lumd.parcel Key:  9 Value:  QVariant(Invalid)",
            "debug com.tovra.lumd.parcel Key:  -3 Value:  QVariant(qlonglong, 8)"}));
}

void TestAlienBinderParcelBundleReads::mapsOfNoEntriesAreConsumed_data()
{
    QTest::addColumn<qint32>("count");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("min") << std::numeric_limits<qint32>::min();
}

void TestAlienBinderParcelBundleReads::mapsOfNoEntriesAreConsumed()
{
    QFETCH(qint32, count);
    const QByteArray bytes = ParcelWriter()
                                 .int32(count)
                                 .int32(count)
                                 .raw(bundle(count, ParcelWriter()))
                                 .int32(77)
                                 .bytes();
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readMap(), QVariantMap());
        QCOMPARE(parcel.readIntMap(), (QMap<int, QVariant>()));
        QCOMPARE(parcel.readBundle(), QVariantMap());
        QCOMPARE(parcel.readInt32(), 77);
    });
}

void TestAlienBinderParcelBundleReads::everythingIsEmptyAtTheEnd()
{
    LogCapture log;
    m_peer.receive({}, [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readBundle(), QVariantMap());
        QVERIFY(!parcel.readValue().isValid());
        QCOMPARE(parcel.readMap(), QVariantMap());
        QCOMPARE(parcel.readIntMap(), (QMap<int, QVariant>()));
    });
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelBundleReads::everythingIsEmptyWithoutAReader()
{
    LogCapture log;
    AlienBinderParcel parcel;
    QCOMPARE(parcel.readBundle(), QVariantMap());
    QVERIFY(!parcel.readValue().isValid());
    QCOMPARE(parcel.readMap(), QVariantMap());
    QCOMPARE(parcel.readIntMap(), (QMap<int, QVariant>()));
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestAlienBinderParcelBundleReads)
#include "tst_alienbinderparcel_bundlereads.moc"
