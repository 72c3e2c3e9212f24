// SPDX-License-Identifier: BSD-3-Clause
// A bundle whose length has no room in a signed word. No parcel in memory would hold it, so
// the functions of the writer are this file's own: they count the bytes and keep none.
#include "binder/alienbinderparcel.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QtTest>

namespace {

/// What was written, by the functions below.
struct CountingParcel
{
    gsize size = 0;
    QVector<QPair<gsize, gint32>> overwrites;
    guint32 firstWord = 0;
};

CountingParcel &parcelOf(GBinderWriter *writer)
{
    return *static_cast<CountingParcel *>(const_cast<void *>(writer->d[0]));
}

} // namespace

extern "C" {

void gbinder_writer_append_int32(GBinderWriter *writer, guint32 value)
{
    if (parcelOf(writer).size == 0)
        parcelOf(writer).firstWord = value;
    parcelOf(writer).size += 4;
}

void gbinder_writer_append_string16_utf16(
    GBinderWriter *writer, const gunichar2 *utf16, gssize length)
{
    Q_UNUSED(utf16)
    parcelOf(writer).size += 4 + (gsize(length) * 2 + 2 + 3) / 4 * 4;
}

gsize gbinder_writer_bytes_written(GBinderWriter *writer)
{
    return parcelOf(writer).size;
}

void gbinder_writer_overwrite_int32(GBinderWriter *writer, gsize offset, gint32 value)
{
    parcelOf(writer).overwrites.append({offset, value});
}

} // extern "C"

class TestAlienBinderParcelBundleOverflow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthOutsideTheSignedRangeIsLeftOut_data();
    void lengthOutsideTheSignedRangeIsLeftOut();
};

void TestAlienBinderParcelBundleOverflow::lengthOutsideTheSignedRangeIsLeftOut_data()
{
    QTest::addColumn<int>("entries");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QVector<gint32>>("length");

    // An entry of 0x100000 bytes: a key of 12 bytes, a tag, a string of 0xffff0 bytes. The
    // count makes the bundle four bytes longer than its entries.
    QTest::newRow("longest") << 2047 << QStringList() << QVector<gint32>{0x7ff00004};
    QTest::newRow("too long") << 2048
                              << QStringList(QStringLiteral(
                                     "critical com.tovra.lumd.parcel Bundle too long for signed "
                                     "int32! 2147483652"))
                              << QVector<gint32>();
    QTest::newRow("longest without a sign")
        << 4095
        << QStringList(QStringLiteral(
               "critical com.tovra.lumd.parcel Bundle too long for signed int32! 4293918724"))
        << QVector<gint32>();
}

void TestAlienBinderParcelBundleOverflow::lengthOutsideTheSignedRangeIsLeftOut()
{
    QFETCH(int, entries);
    QFETCH(QStringList, lines);
    QFETCH(QVector<gint32>, length);

    // One text for all entries: the memory holds it once.
    const QString text((0xffff0 - 4) / 2 - 1, QLatin1Char('x'));
    QVariantMap bundle;
    for (int i = 0; i < entries; ++i)
        bundle.insert(QString(QChar(ushort(i + 1))) + QStringLiteral("ky"), text);
    CountingParcel counting;
    GBinderWriter writer{};
    writer.d[0] = &counting;
    AlienBinderParcel parcel(&writer);

    LogCapture log(LogCapture::Level::Default);
    parcel.writeBundle(bundle);

    QCOMPARE(log.lines(), lines);
    QCOMPARE(counting.size, gsize(12) + gsize(entries) * 0x100000);
    QCOMPARE(counting.firstWord, 1U);
    QVector<gint32> lengths;
    for (const auto &overwrite : qAsConst(counting.overwrites)) {
        QCOMPARE(overwrite.first, gsize(0));
        lengths.append(overwrite.second);
    }
    QCOMPARE(lengths, length);
}

LUM_TEST_MAIN(TestAlienBinderParcelBundleOverflow)
#include "tst_alienbinderparcel_bundleoverflow.moc"
