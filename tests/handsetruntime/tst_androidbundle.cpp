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
    void wrongBundleIsRefused_data();
    void wrongBundleIsRefused();
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
    const QJsonValue read = readAndroidBundle(parcel);
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(read, QJsonValue(QJsonObject{{QStringLiteral("k"), value}}));
}

void TestAndroidBundle::nullAndEmptyBundleAreToldApart()
{
    AndroidParcel parcel(word(-1) + word(0) + bundle(0, {}));
    QCOMPARE(readAndroidBundle(parcel), QJsonValue());
    QCOMPARE(readAndroidBundle(parcel), QJsonValue(QJsonObject()));
    QCOMPARE(readAndroidBundle(parcel), QJsonValue(QJsonObject()));
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
}

void TestAndroidBundle::entriesAreReadInOrder()
{
    AndroidParcel parcel(bundle(2,
                             string16(QStringLiteral("one")) + word(1) + word(1)
                                 + string16(QStringLiteral("two")) + word(9) + word(0))
        + word(5));
    QCOMPARE(readAndroidBundle(parcel),
        QJsonValue(QJsonObject{{QStringLiteral("one"), content("int", 1)},
            {QStringLiteral("two"), content("boolean", false)}}));
    QCOMPARE(parcel.readInt32(), 5);
}

void TestAndroidBundle::wrongBundleIsRefused_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("error");
    const QByteArray one = entry(1, word(1));
    QTest::newRow("negative length")
        << word(-2) << QStringLiteral("Bundle of length -2 before offset 4 of 4");
    QTest::newRow("another magic")
        << (word(4) + word(0x4C444E43) + word(0)) << QStringLiteral("Bundle's magic is 0x4c444e43");
    QTest::newRow("negative count") << bundle(-1, {}) << QStringLiteral("Bundle of -1 entries");
    QTest::newRow("length of one word less")
        << (word(16) + bundle(1, one).mid(4)) << QStringLiteral("Bundle of length 16 has 20 bytes");
    QTest::newRow("placeholder for the length")
        << (word(1) + bundle(1, one).mid(4)) << QStringLiteral("Bundle of length 1 has 20");
    QTest::newRow("count too small")
        << bundle(0, one) << QStringLiteral("Bundle of length 20 has 4 bytes");
    QTest::newRow("count too large")
        << bundle(2, one) << QStringLiteral("4 bytes wanted before offset 28 of 28");
    QTest::newRow("key without a value")
        << bundle(2, string16(QStringLiteral("j")) + one) << QStringLiteral("4 bytes wanted");
    QTest::newRow("unknown type") << bundle(1, entry(5, word(1)))
                                  << QStringLiteral("value of type 5 before offset 24 of 28");
    QTest::newRow("boolean of 2") << bundle(1, entry(9, word(2))) << QStringLiteral("bool is 2");
    QTest::newRow("null key") << bundle(1, nullString() + word(1) + word(1))
                              << QStringLiteral("Bundle's key \"\" is null or not its first");
    QTest::newRow("key given twice")
        << bundle(2, one + one) << QStringLiteral("Bundle's key \"k\" is null or not its");
    QTest::newRow("array of negative length")
        << bundle(1, entry(14, word(-1))) << QStringLiteral("string array of length -1");
}

void TestAndroidBundle::wrongBundleIsRefused()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, error);
    AndroidParcel parcel(data);
    readAndroidBundle(parcel);
    QVERIFY2(parcel.error().startsWith(error), qPrintable(parcel.error()));
}

QTEST_APPLESS_MAIN(TestAndroidBundle)
#include "tst_androidbundle.moc"
