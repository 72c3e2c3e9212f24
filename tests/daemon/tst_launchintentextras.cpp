// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/intenttest.h"
#include "tests/support/testmain.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

#include <QDir>

#include <limits>

#include <unistd.h>

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

QDBusUnixFileDescriptor descriptor()
{
    return QDBusUnixFileDescriptor(STDERR_FILENO);
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
    void descriptorsAreLeftOut();
    void descriptorsAreNotKeptWhileTheIntentWaits();

private:
    /// How many files the daemon has open.
    int openFiles() const;
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
    row("v", QVariant::fromValue(QDBusVariant(1)), "QDBusVariant");
    row("as", QStringList{QStringLiteral("a")}, "QStringList");
    row("as, empty", QStringList(), "QStringList");
    row("ay", QByteArray("a"), "QByteArray");
    row("ai", QVariant::fromValue(QList<int>{1, 2}), "QDBusArgument");
    row("av", QVariantList{1}, "QDBusArgument");
    row("(i)", structure(1), "QDBusArgument");
    row("a{sv}", QVariantMap{{QStringLiteral("a"), 1}}, "QDBusArgument");
    row("(h)", structure(descriptor()), "QDBusArgument");
    row("v of (h)", QVariant::fromValue(QDBusVariant(structure(descriptor()))), "QDBusVariant");
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

void TestLaunchIntentExtras::descriptorsAreLeftOut()
{
    IntentCall call;
    const QVariant file = QVariant::fromValue(descriptor());
    call.extras = {{QStringLiteral("a"), file},
        {QStringLiteral("b"), QVariant::fromValue(QDBusVariant(file))},
        {QStringLiteral("c"), true}};
    QCOMPARE(launch(call), QString());
    Intent intent;
    constexpr qint32 booleanTag = 9;
    intent.extras =
        bundle(parcel().string16(QStringLiteral("c")).int32(booleanTag).boolean(true), 1);
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody(intent)});
    call.extras = {{QStringLiteral("a"), file}};
    QCOMPARE(launch(call), QString());
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody({})});
    QCOMPARE(warnings(), QStringList());
}

int TestLaunchIntentExtras::openFiles() const
{
    return QDir(QStringLiteral("/proc/%1/fd").arg(m_world->daemon->processId()))
        .entryList(QDir::System | QDir::AllEntries | QDir::NoDotAndDotDot)
        .size();
}

void TestLaunchIntentExtras::descriptorsAreNotKeptWhileTheIntentWaits()
{
    m_world->renew();
    QVERIFY(m_world->start());
    IntentCall call;
    const QVariant file = QVariant::fromValue(descriptor());
    call.extras = {{QStringLiteral("h"), file},
        {QStringLiteral("vh"), QVariant::fromValue(QDBusVariant(file))},
        {QStringLiteral("(h)"), structure(descriptor())},
        {QStringLiteral("a{sv}"), QVariantMap{{QStringLiteral("h"), file}}},
        {QStringLiteral("v(h)"), QVariant::fromValue(QDBusVariant(structure(descriptor())))},
        {QStringLiteral("z"), true}};
    // The first notification connects to the user's bus.
    QCOMPARE(launch(call), QString());
    QVERIFY(DaemonFixture::settle());
    const int before = openFiles();
    constexpr int calls = 200;
    for (int i = 0; i < calls; ++i)
        QCOMPARE(launch(call), QString());
    QVERIFY(DaemonFixture::settle());
    QTRY_COMPARE(openFiles(), before);

    m_world->android->registerService(QStringLiteral("activity"));
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->waitForLink(QStringLiteral("activity")));
    Intent intent;
    constexpr qint32 booleanTag = 9;
    intent.extras = bundle(parcel()
                               .string16(QStringLiteral("(h)"))
                               .string16(QStringLiteral("a{sv}"))
                               .string16(QStringLiteral("v(h)"))
                               .string16(QStringLiteral("z"))
                               .int32(booleanTag)
                               .boolean(true),
        4);
    QCOMPARE(takeBodies(), QVector<QByteArray>(1 + calls, startActivityBody(intent)));
}

LUM_TEST_MAIN(TestLaunchIntentExtras)
#include "tst_launchintentextras.moc"
