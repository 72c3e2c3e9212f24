// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/intenttest.h"
#include "tests/support/testmain.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

#include <limits>

using FakeBinder::ParcelWriter;

Q_DECLARE_METATYPE(FakeBinder::ParcelWriter)

namespace {

const QString empty = QStringLiteral("");

template <typename Value> QVariant structure(const Value &value)
{
    QDBusArgument argument;
    argument.beginStructure();
    argument << value;
    argument.endStructure();
    return QVariant::fromValue(argument);
}

} // namespace

class TestLaunchIntentExtras : public IntentTest
{
    Q_OBJECT

private Q_SLOTS:
    void extrasOfSupportedTypesAreWritten_data();
    void extrasOfSupportedTypesAreWritten();
    void extrasOfOtherTypesLeaveAKeyWithoutAValue_data();
    void extrasOfOtherTypesLeaveAKeyWithoutAValue();
};

void TestLaunchIntentExtras::extrasOfSupportedTypesAreWritten_data()
{
    QTest::addColumn<QVariantMap>("extras");
    QTest::addColumn<ParcelWriter>("entries");
    const auto row = [](const char *title, const QVariant &value, const ParcelWriter &written) {
        ParcelWriter entries = parcel();
        entries.string16(QStringLiteral("k")).raw(written.bytes());
        QTest::newRow(title) << QVariantMap{{QStringLiteral("k"), value}} << entries;
    };
    constexpr qint32 stringTag = 0;
    constexpr qint32 integerTag = 1;
    constexpr qint32 longTag = 6;
    constexpr qint32 doubleTag = 8;
    constexpr qint32 booleanTag = 9;
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    row("i", -5, parcel().int32(integerTag).int32(-5));
    row("u", 7U, parcel().int32(integerTag).int32(7));
    row("u above the signed range", 0xfffffffeU, parcel().int32(integerTag).int32(-2));
    row("x", QVariant::fromValue(lowest), parcel().int32(longTag).int64(lowest));
    row("t above the signed range", QVariant::fromValue(quint64(-2)),
        parcel().int32(longTag).int64(-2));
    row("d", 0.1, parcel().int32(doubleTag).real64(0.1));
    row("b", true, parcel().int32(booleanTag).boolean(true));
    row("b, false", false, parcel().int32(booleanTag).boolean(false));
    row("s", QStringLiteral(u"\u00e4"),
        parcel().int32(stringTag).string16(QStringLiteral(u"\u00e4")));
    row("s, empty", empty, parcel().int32(stringTag).string16(empty));

    const QVariantMap several{{QStringLiteral("b"), 1}, {QStringLiteral("a"), 2}, {empty, 3}};
    QTest::newRow("several, in order of the key") << several
                                                  << parcel()
                                                         .string16(empty)
                                                         .int32(integerTag)
                                                         .int32(3)
                                                         .string16(QStringLiteral("a"))
                                                         .int32(integerTag)
                                                         .int32(2)
                                                         .string16(QStringLiteral("b"))
                                                         .int32(integerTag)
                                                         .int32(1);
}

void TestLaunchIntentExtras::extrasOfSupportedTypesAreWritten()
{
    QFETCH(QVariantMap, extras);
    QFETCH(ParcelWriter, entries);
    IntentCall call;
    call.extras = extras;
    QCOMPARE(launch(call), QString());
    Intent intent;
    intent.extras = bundle(entries, extras.size());
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody(intent)});
    QCOMPARE(warnings(), QStringList());
}

void TestLaunchIntentExtras::extrasOfOtherTypesLeaveAKeyWithoutAValue_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("type");
    const auto row = [](const char *title, const QVariant &value, const char *type) {
        QTest::newRow(title) << value << QString::fromLatin1(type);
    };
    row("y", QVariant::fromValue(uchar(1)), "uchar");
    row("n", QVariant::fromValue(qint16(1)), "short");
    row("q", QVariant::fromValue(quint16(1)), "ushort");
    row("o", QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a"))), "QDBusObjectPath");
    row("g", QVariant::fromValue(QDBusSignature(QStringLiteral("a{sv}"))), "QDBusSignature");
    row("h", QVariant::fromValue(QDBusUnixFileDescriptor(0)), "QDBusUnixFileDescriptor");
    row("v", QVariant::fromValue(QDBusVariant(1)), "QDBusVariant");
    row("as", QStringList{QStringLiteral("a")}, "QStringList");
    row("as, empty", QStringList(), "QStringList");
    row("ay", QByteArray("a"), "QByteArray");
    row("ai", QVariant::fromValue(QList<int>{1, 2}), "QDBusArgument");
    row("av", QVariantList{1}, "QDBusArgument");
    row("(i)", structure(1), "QDBusArgument");
    row("a{sv}", QVariantMap{{QStringLiteral("a"), 1}}, "QDBusArgument");
}

void TestLaunchIntentExtras::extrasOfOtherTypesLeaveAKeyWithoutAValue()
{
    QFETCH(QVariant, value);
    QFETCH(QString, type);
    IntentCall call;
    call.extras = {{QStringLiteral("a"), value}, {QStringLiteral("b"), true}};
    QCOMPARE(launch(call), QString());
    Intent intent;
    constexpr qint32 booleanTag = 9;
    intent.extras = bundle(parcel()
                               .string16(QStringLiteral("a"))
                               .string16(QStringLiteral("b"))
                               .int32(booleanTag)
                               .boolean(true),
        2);
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody(intent)});
    QTRY_COMPARE(warnings(),
        QStringList{QStringLiteral("critical com.tovra.lumd.parcel Unsupported write bundle type! ")
            + type});
}

LUM_TEST_MAIN(TestLaunchIntentExtras)
#include "tst_launchintentextras.moc"
