// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderparcel.h"
#include "tests/binder/androidpeer.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <cstring>
#include <limits>

using FakeBinder::ParcelWriter;

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

/// But for lists: whatever lies where a count is read is taken at its word.
void readEverything(AlienBinderParcel &parcel)
{
    parcel.readBool();
    parcel.readInt32();
    parcel.readInt64();
    parcel.readDouble();
    parcel.readString();
    parcel.readByteArray();
    if (GBinderRemoteObject *object = parcel.readObject())
        gbinder_remote_object_unref(object);
}

} // namespace

class TestAlienBinderParcelDamage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void unreadableStringIsNull_data();
    void unreadableStringIsNull();
    void unreadableByteArrayIsEmpty_data();
    void unreadableByteArrayIsEmpty();
    void countOfZeroOrBelowGivesAnEmptyListAndIsConsumed_data();
    void countOfZeroOrBelowGivesAnEmptyListAndIsConsumed();
    void missingElementsAreNullStrings();
    void countIsRunInFullWhateverTheDataHolds();
    void parcelCutAtAnyByteIsRead();
    void anyWordMayLie_data();
    void anyWordMayLie();

private:
    AndroidPeer m_peer;
};

void TestAlienBinderParcelDamage::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestAlienBinderParcelDamage::unreadableStringIsNull_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("longer than the data") << hex("6400000061006200 00000000");
    QTest::newRow("longest of all") << hex("ffffff7f 00000000");
    QTest::newRow("length -2") << hex("feffffff 00000000");
    QTest::newRow("smallest length") << hex("00000080 00000000");
    QTest::newRow("no room for the end") << hex("0200000061006200");
    QTest::newRow("length alone") << hex("01000000");
}

void TestAlienBinderParcelDamage::unreadableStringIsNull()
{
    QFETCH(QByteArray, bytes);
    LogCapture log;
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) { QVERIFY(parcel.readString().isNull()); });
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelDamage::unreadableByteArrayIsEmpty_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("longer than the data") << hex("3200000061626364");
    QTest::newRow("longest of all") << hex("ffffff7f61626364");
    QTest::newRow("length -5") << hex("fbffffff61626364");
    QTest::newRow("smallest length") << hex("0000008061626364");
    QTest::newRow("two bytes") << hex("0000");
}

void TestAlienBinderParcelDamage::unreadableByteArrayIsEmpty()
{
    QFETCH(QByteArray, bytes);
    LogCapture log;
    m_peer.receive(
        bytes, [](AlienBinderParcel &parcel) { QCOMPARE(parcel.readByteArray(), QByteArray()); });
    QCOMPARE(log.lines(), texts({"debug com.tovra.lumd.parcel ByteArray size read:  0"}));
}

void TestAlienBinderParcelDamage::countOfZeroOrBelowGivesAnEmptyListAndIsConsumed_data()
{
    QTest::addColumn<qint32>("count");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("min") << std::numeric_limits<qint32>::min();
}

void TestAlienBinderParcelDamage::countOfZeroOrBelowGivesAnEmptyListAndIsConsumed()
{
    QFETCH(qint32, count);
    const QByteArray bytes = ParcelWriter().int32(count).string16(QStringLiteral("next")).bytes();
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) {
        QCOMPARE(parcel.readStringList(), QStringList());
        QCOMPARE(parcel.readString(), QStringLiteral("next"));
    });
}

void TestAlienBinderParcelDamage::missingElementsAreNullStrings()
{
    LogCapture log;
    const QByteArray bytes = ParcelWriter().int32(3).string16(QStringLiteral("one")).bytes();
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) {
        QCOMPARE(shown(parcel.readStringList()), texts({"\"one\"", "(null)", "(null)"}));
    });
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderParcelDamage::countIsRunInFullWhateverTheDataHolds()
{
    constexpr int count = 1000000;
    // The second string cannot be read and so stays in front of the reader to the end.
    const QByteArray bytes =
        ParcelWriter().int32(count).string16(QStringLiteral("one")).raw(hex("64000000")).bytes();
    m_peer.receive(bytes, [](AlienBinderParcel &parcel) {
        const QStringList values = parcel.readStringList();
        QCOMPARE(values.size(), count);
        QCOMPARE(values.first(), QStringLiteral("one"));
        QCOMPARE(values.count(QString()), count - 1);
        QCOMPARE(parcel.readInt32(), 100);
    });
}

void TestAlienBinderParcelDamage::parcelCutAtAnyByteIsRead()
{
    const quint32 id = FakeBinder::newRemoteObject(QStringLiteral("token"));
    const ParcelWriter full = ParcelWriter()
                                  .boolean(true)
                                  .int32(11)
                                  .int64(12)
                                  .real64(13.0)
                                  .string16(QStringLiteral("fourteen"))
                                  .byteArray("fifteen!")
                                  .remoteObject(id)
                                  .string16List({QStringLiteral("16"), QStringLiteral("17")});
    const int stringStart = 4 + 4 + 8 + 8;
    const int arrayStart = stringStart + 4 + 20;
    const int objectStart = arrayStart + 4 + 8;
    const int listStart = objectStart + 24;
    QCOMPARE(full.offsets(), QVector<int>{objectStart});

    for (int size = 0; size <= full.bytes().size(); ++size) {
        LogCapture log;
        m_peer.receive(
            full.bytes().left(size),
            [=](AlienBinderParcel &parcel) {
                const auto whole = [size](int end) { return size >= end; };
                QCOMPARE(parcel.readBool(), whole(4));
                if (!whole(4))
                    return;
                QCOMPARE(parcel.readInt32(), whole(8) ? 11 : -1);
                if (!whole(8))
                    return;
                QCOMPARE(parcel.readInt64(), qint64(whole(16) ? 12 : -1));
                if (!whole(16))
                    return;
                QCOMPARE(parcel.readDouble(), whole(stringStart) ? 13.0 : -1.0);
                if (!whole(stringStart))
                    return;
                QCOMPARE(shown(parcel.readString()),
                    whole(arrayStart) ? QStringLiteral("\"fourteen\"") : QStringLiteral("(null)"));
                if (!whole(arrayStart))
                    return;
                QCOMPARE(parcel.readByteArray(),
                    whole(objectStart) ? QByteArray("fifteen!") : QByteArray());
                if (!whole(objectStart))
                    return;
                const GBinder::RemoteObject object(parcel.readObject());
                QCOMPARE(object != nullptr, whole(listStart));
                if (!whole(listStart))
                    return;
                QStringList expected;
                if (whole(listStart + 4))
                    expected = texts({"(null)", "(null)"});
                if (whole(listStart + 16))
                    expected[0] = QStringLiteral("\"16\"");
                if (whole(listStart + 28))
                    expected[1] = QStringLiteral("\"17\"");
                QCOMPARE(shown(parcel.readStringList()), expected);
            },
            size >= listStart ? full.offsets() : QVector<int>());
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("cut at byte %1").arg(size)));
        const bool inInt32 = size > 4 && size < 8;
        QCOMPARE(log.lines().count(
                     QStringLiteral("critical com.tovra.lumd.parcel Couldn't read result")),
            inInt32 ? 1 : 0);
    }
}

void TestAlienBinderParcelDamage::anyWordMayLie_data()
{
    QTest::addColumn<qint32>("word");
    QTest::newRow("-1") << -1;
    QTest::newRow("-2") << -2;
    QTest::newRow("0") << 0;
    QTest::newRow("1") << 1;
    QTest::newRow("thousands") << 100000;
    QTest::newRow("max") << std::numeric_limits<qint32>::max();
    QTest::newRow("one below max") << std::numeric_limits<qint32>::max() - 1;
    QTest::newRow("half of max") << std::numeric_limits<qint32>::max() / 2;
    QTest::newRow("min") << std::numeric_limits<qint32>::min();
}

void TestAlienBinderParcelDamage::anyWordMayLie()
{
    QFETCH(qint32, word);
    const quint32 id = FakeBinder::newRemoteObject(QStringLiteral("token"));
    const ParcelWriter full = ParcelWriter()
                                  .boolean(true)
                                  .int32(11)
                                  .int64(12)
                                  .real64(13.0)
                                  .string16(QStringLiteral("fourteen"))
                                  .byteArray("fifteen!")
                                  .remoteObject(id);
    const QStringList before = FakeBinder::leaks();
    for (int at = 0; at < full.bytes().size(); at += 4) {
        QByteArray bytes = full.bytes();
        memcpy(bytes.data() + at, &word, sizeof(word));
        m_peer.receive(bytes, &readEverything, full.offsets());
    }
    QCOMPARE(FakeBinder::leaks(), before);
}

LUM_TEST_MAIN(TestAlienBinderParcelDamage)
#include "tst_alienbinderparceldamage.moc"
