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
const char tooBig[] = "warning com.tovra.lumd.parcel Bundle too big";

/// Four entries, and where each of them ends.
struct Sample
{
    Sample()
    {
        bytes.int32(0).raw("BNDL").int32(4);
        add(QStringLiteral("first"), 11);
        add(QStringLiteral("second"), QStringLiteral("text"));
        add(QStringLiteral("third"), qlonglong(1) << 40);
        add(QStringLiteral("fourth"), true);
    }

    void add(const QString &key, const QVariant &value)
    {
        bytes.string16(key);
        if (value.userType() == QMetaType::Int)
            bytes.int32(1).int32(value.toInt());
        else if (value.userType() == QMetaType::QString)
            bytes.int32(0).string16(value.toString());
        else if (value.userType() == QMetaType::LongLong)
            bytes.int32(6).int64(value.toLongLong());
        else
            bytes.int32(9).boolean(value.toBool());
        keys.append(key);
        values.append(value);
        ends.append(bytes.bytes().size());
    }

    ParcelWriter bytes;
    QStringList keys;
    QVariantList values;
    QVector<int> ends;
};

// What a count of a million logs, counted instead of recorded.
int expectedWarnings = 0;
int otherMessages = 0;

void countMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const bool isExpected = type == QtWarningMsg && text == QLatin1String("Bundle too big")
        && qstrcmp(context.category, "com.tovra.lumd.parcel") == 0;
    ++(isExpected ? expectedWarnings : otherMessages);
}

} // namespace

class TestAlienBinderParcelBundleDamage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void wrongMagicGivesAnEmptyBundle_data();
    void wrongMagicGivesAnEmptyBundle();
    void bundleCutBeforeItsMagicIsEmpty();
    void lengthIsComparedEntryByEntry_data();
    void lengthIsComparedEntryByEntry();
    void lengthDoesNotMoveTheReader();
    void countIsRunInFullWhateverTheDataHolds();
    void unsupportedTagIsFollowedFromItsPayload();
    void tagCutShortIsPassedOverInSilence();
    void bundleCutAtAnyByteKeepsWhatIsWhole();
    void anyWordMayLie_data();
    void anyWordMayLie();

private:
    AndroidPeer m_peer;
};

void TestAlienBinderParcelBundleDamage::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestAlienBinderParcelBundleDamage::wrongMagicGivesAnEmptyBundle_data()
{
    QTest::addColumn<qint32>("magic");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("other byte order") << 0x424E444C;
    QTest::newRow("native bundle of later releases") << 0x4C444E44;
}

void TestAlienBinderParcelBundleDamage::wrongMagicGivesAnEmptyBundle()
{
    QFETCH(qint32, magic);
    const QByteArray bytes =
        ParcelWriter().int32(20).int32(magic).int32(1).string16(a).int32(1).int32(5).bytes();
    LogCapture log;
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readBundle(), QVariantMap());
        // The reader stays behind the magic number.
        QCOMPARE(parcel.readInt32(), 1);
        QCOMPARE(parcel.readString(), a);
    });
    QCOMPARE(log.lines(),
        QStringList(QStringLiteral("critical com.tovra.lumd.parcel Bad bundle magic number 0x%08x ")
            + QString::number(magic)));
}

void TestAlienBinderParcelBundleDamage::bundleCutBeforeItsMagicIsEmpty()
{
    LogCapture log;
    m_peer.receive(ParcelWriter().int32(20).bytes(),
        [](AlienBinderParcel &parcel) { QCOMPARE(parcel.readBundle(), QVariantMap()); });
    QCOMPARE(
        log.lines(), texts({"critical com.tovra.lumd.parcel Bad bundle magic number 0x%08x -1"}));
}

void TestAlienBinderParcelBundleDamage::lengthIsComparedEntryByEntry_data()
{
    QTest::addColumn<qint32>("length");
    QTest::addColumn<int>("warnings");

    // The count is four bytes, each of the two entries sixteen.
    QTest::newRow("right") << 36 << 0;
    QTest::newRow("a byte into the second entry") << 21 << 0;
    QTest::newRow("one entry") << 20 << 1;
    QTest::newRow("a byte into the first entry") << 5 << 1;
    QTest::newRow("the count alone") << 4 << 2;
    QTest::newRow("0") << 0 << 2;
    QTest::newRow("-1") << -1 << 2;
    QTest::newRow("min") << std::numeric_limits<qint32>::min() << 2;
    QTest::newRow("all that remains") << 40 << 0;
    QTest::newRow("beyond what remains") << 41 << 2;
    QTest::newRow("max") << std::numeric_limits<qint32>::max() << 2;
}

void TestAlienBinderParcelBundleDamage::lengthIsComparedEntryByEntry()
{
    QFETCH(qint32, length);
    QFETCH(int, warnings);
    ParcelWriter bytes;
    bytes.int32(length).raw("BNDL").int32(2);
    bytes.string16(a).int32(1).int32(5).string16(b).int32(9).int32(1);
    bytes.int32(77);
    QStringList lines;
    for (int i = 0; i < warnings; ++i)
        lines.append(QLatin1String(tooBig));

    LogCapture log(LogCapture::Level::Default);
    m_peer.receive(bytes.bytes(), [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readBundle(), QVariantMap({{a, 5}, {b, true}}));
        QCOMPARE(parcel.readInt32(), 77);
    });
    QCOMPARE(log.lines(), lines);
}

void TestAlienBinderParcelBundleDamage::lengthDoesNotMoveTheReader()
{
    ParcelWriter bytes;
    bytes.int32(28).raw("BNDL").int32(1).string16(a).int32(1).int32(5).int32(77).int32(78);
    m_peer.receive(bytes.bytes(), [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readBundle(), QVariantMap({{a, 5}}));
        QCOMPARE(parcel.readInt32(), 77);
    });
}

void TestAlienBinderParcelBundleDamage::countIsRunInFullWhateverTheDataHolds()
{
    constexpr qint32 count = 1000000;
    ParcelWriter bytes;
    bytes.int32(36).raw("BNDL").int32(count);
    bytes.string16(a).int32(1).int32(5).string16(b).int32(9).int32(1);

    QVariantMap bundle;
    const QtMessageHandler previous = qInstallMessageHandler(&countMessage);
    m_peer.receive(
        bytes.bytes(), [&bundle](AlienBinderParcel &parcel) { bundle = parcel.readBundle(); });
    qInstallMessageHandler(previous);

    QCOMPARE(bundle, QVariantMap({{a, 5}, {b, true}, {QString(), QVariant()}}));
    QCOMPARE(expectedWarnings, count - 2);
    QCOMPARE(otherMessages, 0);
}

void TestAlienBinderParcelBundleDamage::unsupportedTagIsFollowedFromItsPayload()
{
    // A Parcelable: the name of its class, then what that class writes.
    ParcelWriter entries;
    entries.string16(a).int32(4).string16(QStringLiteral("x.Y")).int32(1).int32(5);
    entries.string16(b).int32(1).int32(6);
    const QByteArray bytes = ParcelWriter()
                                 .int32(entries.bytes().size() + 4)
                                 .raw("BNDL")
                                 .int32(2)
                                 .raw(entries.bytes())
                                 .bytes();
    LogCapture log(LogCapture::Level::Default);
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readBundle(), QVariantMap({{a, QVariant()}, {QStringLiteral("x.Y"), 5}}));
        // The loop ended with its count; the entry that came last is left over.
        QCOMPARE(parcel.readString(), b);
    });
    QCOMPARE(
        log.lines(), texts({"critical com.tovra.lumd.parcel Unsupported read bundle type! 4"}));
}

void TestAlienBinderParcelBundleDamage::tagCutShortIsPassedOverInSilence()
{
    LogCapture log;
    m_peer.receive(QByteArray(2, '\1'),
        [](AlienBinderParcel &parcel) { QVERIFY(!parcel.readValue().isValid()); });
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelBundleDamage::bundleCutAtAnyByteKeepsWhatIsWhole()
{
    const Sample sample;
    for (int size = 0; size < sample.bytes.bytes().size(); ++size) {
        QVariantMap bundle;
        LogCapture log;
        m_peer.receive(sample.bytes.bytes().left(size),
            [&bundle](AlienBinderParcel &parcel) { bundle = parcel.readBundle(); });
        for (int i = 0; i < sample.ends.size(); ++i) {
            const QByteArray what = "entry " + QByteArray::number(i) + " of a bundle of "
                + QByteArray::number(size) + " bytes";
            if (sample.ends[i] <= size)
                QVERIFY2(bundle.value(sample.keys[i]) == sample.values[i], what.constData());
            else
                QVERIFY2(bundle.value(sample.keys[i]) != sample.values[i], what.constData());
        }
        QVERIFY2(bundle.size() <= sample.keys.size() + 1, qPrintable(QString::number(size)));
    }
}

void TestAlienBinderParcelBundleDamage::anyWordMayLie_data()
{
    QTest::addColumn<qint32>("lie");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("-2") << -2;
    QTest::newRow("max") << std::numeric_limits<qint32>::max();
    QTest::newRow("min") << std::numeric_limits<qint32>::min();
    QTest::newRow("a few") << 3;
    QTest::newRow("more than there is") << 300;
}

void TestAlienBinderParcelBundleDamage::anyWordMayLie()
{
    QFETCH(qint32, lie);
    constexpr int countPosition = 8;
    const Sample sample;
    for (int position = 0; position < sample.bytes.bytes().size(); position += 4) {
        // The count is taken at its word, and would be run for hours.
        if (position == countPosition && lie > 1000)
            continue;
        QByteArray bytes = sample.bytes.bytes();
        bytes.replace(position, 4, ParcelWriter().int32(lie).bytes());
        QVariantMap bundle;
        LogCapture log;
        m_peer.receive(
            bytes, [&bundle](AlienBinderParcel &parcel) { bundle = parcel.readBundle(); });
        if (position <= countPosition)
            continue;
        for (int i = 0; i < sample.ends.size() && sample.ends[i] <= position; ++i)
            QCOMPARE(bundle.value(sample.keys[i]), sample.values[i]);
        QVERIFY2(bundle.size() <= sample.keys.size(), qPrintable(QString::number(position)));
    }
}

LUM_TEST_MAIN(TestAlienBinderParcelBundleDamage)
#include "tst_alienbinderparcel_bundledamage.moc"
