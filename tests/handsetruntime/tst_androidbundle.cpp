// SPDX-License-Identifier: BSD-3-Clause
#include "androidbundle.h"
#include "androidparcel.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;

namespace {

QByteArray entry(qint32 type, const QByteArray &payload)
{
    return string16(QStringLiteral("k")) + word(type) + payload;
}

QJsonObject content(const char *type, const QJsonValue &value)
{
    return {{QStringLiteral("type"), QLatin1String(type)}, {QStringLiteral("value"), value}};
}

} // namespace

class TestAndroidBundle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueIsRead_data();
    void valueIsRead();
    void nullAndEmptyBundleAreToldApart();
    void entriesAreReadInOrder();
    void negativeLengthIsANullBundle();
    void wrongHeadIsRefused_data();
    void wrongHeadIsRefused();
    void damagedEntriesAreSkipped_data();
    void damagedEntriesAreSkipped();
    void entriesBeforeTheDamageAreRead();
};

void TestAndroidBundle::valueIsRead_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QJsonObject>("value");
    QTest::newRow("null") << entry(-1, {}) << content("null", {});
    QTest::newRow("string") << entry(0, string16(QStringLiteral("a\u00e4")))
                            << content("string", QStringLiteral("a\u00e4"));
    QTest::newRow("empty string") << entry(0, string16({}))
                                  << content("string", QStringLiteral(""));
    QTest::newRow("null string") << entry(0, nullString()) << content("string", {});
    QTest::newRow("int") << entry(1, word(-7)) << content("int", -7);
    QTest::newRow("long") << entry(6, longWord(Q_INT64_C(9007199254740993)))
                          << content("long", QStringLiteral("9007199254740993"));
    QTest::newRow("double") << entry(8, real(2.5)) << content("double", 2.5);
    QTest::newRow("true") << entry(9, word(1)) << content("boolean", true);
    QTest::newRow("false") << entry(9, word(0)) << content("boolean", false);
    QTest::newRow("string array") << entry(
        14, word(2) + string16(QStringLiteral("x")) + nullString())
                                  << content("string array",
                                         QJsonArray{QStringLiteral("x"), QJsonValue()});
}

void TestAndroidBundle::valueIsRead()
{
    QFETCH(QByteArray, entry);
    QFETCH(QJsonObject, value);
    AndroidParcel parcel(bundle(1, entry));
    const AndroidBundle read = AndroidBundle::read(parcel);
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(read.damage, QString());
    QCOMPARE(read.content, QJsonValue(QJsonObject{{QStringLiteral("k"), value}}));
}

void TestAndroidBundle::nullAndEmptyBundleAreToldApart()
{
    AndroidParcel parcel(word(-1) + word(0) + bundle(0, {}));
    QCOMPARE(AndroidBundle::read(parcel).content, QJsonValue());
    QCOMPARE(AndroidBundle::read(parcel).content, QJsonValue(QJsonObject()));
    QCOMPARE(AndroidBundle::read(parcel).content, QJsonValue(QJsonObject()));
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
}

void TestAndroidBundle::entriesAreReadInOrder()
{
    AndroidParcel parcel(bundle(2,
                             string16(QStringLiteral("one")) + word(1) + word(1)
                                 + string16(QStringLiteral("two")) + word(9) + word(0))
        + word(5));
    QCOMPARE(AndroidBundle::read(parcel).content,
        QJsonValue(QJsonObject{{QStringLiteral("one"), content("int", 1)},
            {QStringLiteral("two"), content("boolean", false)}}));
    QCOMPARE(parcel.readInt32(), 5);
}

void TestAndroidBundle::negativeLengthIsANullBundle()
{
    AndroidParcel parcel(word(-2) + word(5));
    QCOMPARE(AndroidBundle::read(parcel).content, QJsonValue());
    QCOMPARE(parcel.readInt32(), 5);
}

void TestAndroidBundle::wrongHeadIsRefused_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("error");
    QTest::newRow("another magic")
        << (word(4) + word(0x4C444E43) + word(0)) << QStringLiteral("Bundle's magic is 0x4c444e43");
    QTest::newRow("length of one word more")
        << (word(24) + bundle(1, entry(1, word(1))).mid(4))
        << QStringLiteral("24 bytes wanted before offset 8 of 28");
}

void TestAndroidBundle::wrongHeadIsRefused()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, error);
    AndroidParcel parcel(data);
    AndroidBundle::read(parcel);
    QVERIFY2(parcel.error().startsWith(error), qPrintable(parcel.error()));
}

void TestAndroidBundle::damagedEntriesAreSkipped_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("damage");
    const QByteArray one = entry(1, word(1));
    QTest::newRow("negative count") << bundle(-1, {}) << QStringLiteral("Bundle of -1 entries");
    QTest::newRow("count too small") << bundle(0, one) << QStringLiteral("16 bytes left unread");
    QTest::newRow("count too large")
        << bundle(2, one) << QStringLiteral("4 bytes wanted before offset 20 of 20");
    QTest::newRow("key without a value")
        << bundle(2, string16(QStringLiteral("j")) + one) << QStringLiteral("4 bytes wanted");
    QTest::newRow("unknown type") << bundle(1, entry(5, word(1)))
                                  << QStringLiteral("value of type 5 before offset 16 of 20");
    QTest::newRow("boolean of 2") << bundle(1, entry(9, word(2))) << QStringLiteral("bool is 2");
    QTest::newRow("null key") << bundle(1, nullString() + word(1) + word(1))
                              << QStringLiteral("Bundle's key \"\" is null or not its first");
    QTest::newRow("key given twice")
        << bundle(2, one + one) << QStringLiteral("Bundle's key \"k\" is null or not its");
    QTest::newRow("array of negative length")
        << bundle(1, entry(14, word(-1))) << QStringLiteral("string array of length -1");
}

void TestAndroidBundle::damagedEntriesAreSkipped()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, damage);
    AndroidParcel parcel(data + word(5));
    const AndroidBundle read = AndroidBundle::read(parcel);
    QVERIFY2(read.damage.startsWith(damage), qPrintable(read.damage));
    QCOMPARE(parcel.readInt32(), 5);
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
}

void TestAndroidBundle::entriesBeforeTheDamageAreRead()
{
    AndroidParcel parcel(
        bundle(2, entry(1, word(3)) + string16(QStringLiteral("j")) + word(5) + word(1)));
    const AndroidBundle read = AndroidBundle::read(parcel);
    QCOMPARE(read.content, QJsonValue(QJsonObject{{QStringLiteral("k"), content("int", 3)}}));
    QVERIFY2(read.damage.startsWith(QLatin1String("value of type 5")), qPrintable(read.damage));
}

QTEST_APPLESS_MAIN(TestAndroidBundle)
#include "tst_androidbundle.moc"
