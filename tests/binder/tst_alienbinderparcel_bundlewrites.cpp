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

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

QStringList unsupported(const char *type)
{
    return {QStringLiteral("critical com.tovra.lumd.parcel Unsupported write bundle type! ")
        + QLatin1String(type)};
}

} // namespace

class TestAlienBinderParcelBundleWrites : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void valueGoesOutWithItsTag_data();
    void valueGoesOutWithItsTag();
    void unsupportedValueLeavesNothing_data();
    void unsupportedValueLeavesNothing();
    void unsupportedValueLeavesItsKeyInTheBundle_data() { unsupportedValueLeavesNothing_data(); }
    void unsupportedValueLeavesItsKeyInTheBundle();
    void emptyBundleIsTwelveBytes();
    void bundleOfOneEntry();
    void entriesGoOutInTheOrderOfTheirKeys();
    void nullKeyAndEmptyKeyDiffer();
    void bundleStandsBetweenOtherValues();
    void mapIsACountAndItsEntries();
    void intMapIsACountAndItsEntries();
    void emptyMapsAreACount();
    void parcelWithoutWriterWritesNothing();

private:
    QByteArray written(const std::function<void(AlienBinderParcel &)> &write)
    {
        return m_peer.send(write).payload.toHex(' ');
    }

    AndroidPeer m_peer;
};

void TestAlienBinderParcelBundleWrites::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestAlienBinderParcelBundleWrites::valueGoesOutWithItsTag_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("bytes");

    const auto row = [](const char *name, const QVariant &value, const char *digits) {
        QTest::newRow(name) << value << hex(digits);
    };
    row("invalid", QVariant(), "ffffffff");
    row("null string", QString(), "ffffffff");
    row("null int", QVariant(QVariant::Int), "ffffffff");
    row("null string list", QVariant(QVariant::StringList), "ffffffff");
    row("null byte array", QByteArray(), "ffffffff");

    row("empty string", QStringLiteral(""), "00000000 000000000000ffff");
    row("string", QStringLiteral("ab"), "00000000 0200000061006200 00000000");

    row("int", 5, "01000000 05000000");
    row("int 0", 0, "01000000 00000000");
    row("int -1", -1, "01000000 ffffffff");
    row("int max", std::numeric_limits<int>::max(), "01000000 ffffff7f");
    row("int min", std::numeric_limits<int>::min(), "01000000 00000080");
    row("uint", 7U, "01000000 07000000");
    row("uint above the signed range", 4000000000U, "01000000 00286bee");
    row("uint max", std::numeric_limits<uint>::max(), "01000000 ffffffff");

    row("qlonglong", qlonglong(0x0102030405060708), "06000000 0807060504030201");
    row("qlonglong -2", qlonglong(-2), "06000000 feffffffffffffff");
    row("qlonglong min", std::numeric_limits<qlonglong>::min(), "06000000 0000000000000080");
    row("qulonglong", qulonglong(9), "06000000 0900000000000000");
    row("qulonglong above the signed range", std::numeric_limits<qulonglong>::max(),
        "06000000 ffffffffffffffff");

    row("double", 1.5, "08000000 000000000000f83f");
    row("double 0", 0.0, "08000000 0000000000000000");
    row("true", true, "09000000 01000000");
    row("false", false, "09000000 00000000");
}

void TestAlienBinderParcelBundleWrites::valueGoesOutWithItsTag()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, bytes);
    LogCapture log;
    QCOMPARE(written([&value](AlienBinderParcel &parcel) { parcel.writeValue(value); }),
        bytes.toHex(' '));
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelBundleWrites::unsupportedValueLeavesNothing_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("lines");

    const auto row = [](const QVariant &value, const char *type) {
        QTest::newRow(type) << value << unsupported(type);
    };
    row(QStringList{QStringLiteral("a")}, "QStringList");
    row(QVariantMap{{QStringLiteral("a"), 1}}, "QVariantMap");
    row(QVariantList{1}, "QVariantList");
    row(QByteArray("a"), "QByteArray");
    row(QChar(u'a'), "QChar");
    row(QUrl(QStringLiteral("a:b")), "QUrl");
    row(QVariant::fromValue(1.5F), "float");
    row(QVariant::fromValue(short(1)), "short");
    row(QVariant::fromValue(long(1)), "long");
}

void TestAlienBinderParcelBundleWrites::unsupportedValueLeavesNothing()
{
    QFETCH(QVariant, value);
    QFETCH(QStringList, lines);
    LogCapture log(LogCapture::Level::Default);
    QCOMPARE(
        written([&value](AlienBinderParcel &parcel) { parcel.writeValue(value); }), QByteArray());
    QCOMPARE(log.lines(), lines);
}

void TestAlienBinderParcelBundleWrites::unsupportedValueLeavesItsKeyInTheBundle()
{
    QFETCH(QVariant, value);
    QFETCH(QStringList, lines);
    LogCapture log(LogCapture::Level::Default);
    const QByteArray bytes = written([&value](AlienBinderParcel &parcel) {
        parcel.writeBundle({{QStringLiteral("a"), value}, {QStringLiteral("b"), 5}});
    });
    // Counted, and with its key, but with the next key where its value should be.
    QCOMPARE(bytes,
        hex("1c000000 424e444c 02000000 0100000061000000 0100000062000000 01000000 05000000")
            .toHex(' '));
    QCOMPARE(log.lines(), lines);
}

void TestAlienBinderParcelBundleWrites::emptyBundleIsTwelveBytes()
{
    QCOMPARE(written([](AlienBinderParcel &parcel) { parcel.writeBundle({}); }),
        hex("04000000 424e444c 00000000").toHex(' '));
}

void TestAlienBinderParcelBundleWrites::bundleOfOneEntry()
{
    QCOMPARE(
        written([](AlienBinderParcel &parcel) { parcel.writeBundle({{QStringLiteral("k"), 5}}); }),
        hex("14000000 424e444c 01000000 010000006b000000 01000000 05000000").toHex(' '));
}

void TestAlienBinderParcelBundleWrites::entriesGoOutInTheOrderOfTheirKeys()
{
    const QByteArray bytes = written([](AlienBinderParcel &parcel) {
        parcel.writeBundle(
            {{QStringLiteral("b"), true}, {QStringLiteral("a"), QVariant()}, {QString(), 2.0},
                {QStringLiteral("B"), qlonglong(3)}, {QStringLiteral("aa"), QStringLiteral("x")}});
    });
    ParcelWriter entries(ParcelWriter::Style::Gbinder);
    entries.int32(5);
    entries.nullString16().int32(8).real64(2.0);
    entries.string16(QStringLiteral("B")).int32(6).int64(3);
    entries.string16(QStringLiteral("a")).int32(-1);
    entries.string16(QStringLiteral("aa")).int32(0).string16(QStringLiteral("x"));
    entries.string16(QStringLiteral("b")).int32(9).boolean(true);
    const QByteArray expected =
        ParcelWriter().int32(entries.bytes().size()).raw("BNDL").raw(entries.bytes()).bytes();
    QCOMPARE(bytes, expected.toHex(' '));
}

void TestAlienBinderParcelBundleWrites::nullKeyAndEmptyKeyDiffer()
{
    const auto bytesOf = [this](const QString &key) {
        return written([&key](AlienBinderParcel &parcel) { parcel.writeMap({{key, true}}); });
    };
    QCOMPARE(bytesOf(QString()), hex("01000000 ffffffff 09000000 01000000").toHex(' '));
    QCOMPARE(bytesOf(QStringLiteral("")),
        hex("01000000 00000000 0000ffff 09000000 01000000").toHex(' '));
}

void TestAlienBinderParcelBundleWrites::bundleStandsBetweenOtherValues()
{
    const QByteArray bytes = written([](AlienBinderParcel &parcel) {
        parcel.writeInt32(7);
        parcel.writeBundle({{QStringLiteral("k"), false}});
        parcel.writeInt32(9);
    });
    QCOMPARE(bytes,
        hex("07000000 14000000 424e444c 01000000 010000006b000000 09000000 00000000 09000000")
            .toHex(' '));
}

void TestAlienBinderParcelBundleWrites::mapIsACountAndItsEntries()
{
    const QByteArray bytes = written([](AlienBinderParcel &parcel) {
        parcel.writeMap({{QStringLiteral("b"), 2}, {QStringLiteral("a"), QStringLiteral("x")}});
    });
    QCOMPARE(bytes,
        hex("02000000 0100000061000000 00000000 0100000078000000 0100000062000000 01000000 "
            "02000000")
            .toHex(' '));
}

void TestAlienBinderParcelBundleWrites::intMapIsACountAndItsEntries()
{
    const QByteArray bytes = written(
        [](AlienBinderParcel &parcel) { parcel.writeIntMap({{5, true}, {-1, QVariant()}}); });
    QCOMPARE(bytes, hex("02000000 ffffffff ffffffff 05000000 09000000 01000000").toHex(' '));
}

void TestAlienBinderParcelBundleWrites::emptyMapsAreACount()
{
    QCOMPARE(written([](AlienBinderParcel &parcel) {
        parcel.writeMap({});
        parcel.writeIntMap({});
    }),
        hex("00000000 00000000").toHex(' '));
}

void TestAlienBinderParcelBundleWrites::parcelWithoutWriterWritesNothing()
{
    LogCapture log;
    AlienBinderParcel empty;
    empty.writeBundle({{QStringLiteral("a"), 1}});
    empty.writeMap({{QStringLiteral("a"), 1}});
    empty.writeIntMap({{1, 1}});
    empty.writeValue(1);
    // No tag is missing where nothing is written.
    empty.writeValue(QStringList{QStringLiteral("a")});
    QCOMPARE(log.lines(), QStringList());

    m_peer.receive(hex("0500000006000000"), [](AlienBinderParcel &parcel) {
        parcel.writeBundle({{QStringLiteral("a"), 1}});
        parcel.writeValue(1);
        QCOMPARE(parcel.readInt32(), 5);
        QCOMPARE(parcel.readInt32(), 6);
    });
}

LUM_TEST_MAIN(TestAlienBinderParcelBundleWrites)
#include "tst_alienbinderparcel_bundlewrites.moc"
