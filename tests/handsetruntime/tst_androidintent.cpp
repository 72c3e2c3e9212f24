// SPDX-License-Identifier: BSD-3-Clause
#include "androidintent.h"
#include "androidparcel.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;

namespace {

/// The words of an Intent, to be left out or replaced one by one.
struct Words
{
    QByteArray action = string16(QStringLiteral("a.MAIN"));
    QByteArray data = word(1) + string16(QStringLiteral("file:///x"));
    QByteArray type = string16(QStringLiteral("text/plain"));
    QByteArray identifier = string16({});
    QByteArray flags = word(0x10004000);
    QByteArray package = string16(QStringLiteral("p.one"));
    QByteArray component = string16(QStringLiteral("p.two")) + string16(QStringLiteral("p.Main"));
    QByteArray sourceBounds = word(0);
    QByteArray categories = word(1) + string16(QStringLiteral("LAUNCHER"));
    QByteArray selector = word(0);
    QByteArray clipData = word(0);
    QByteArray contentUserHint = word(-2);
    QByteArray extras = bundle(1, string16(QStringLiteral("k")) + word(1) + word(3));

    QByteArray bytes(int sdk) const
    {
        return action + data + type + (sdk >= 29 ? identifier : QByteArray()) + flags + package
            + component + sourceBounds + categories + selector + clipData + contentUserHint
            + extras;
    }
};

QJsonObject fullRecord(int sdk)
{
    QJsonObject record{{QStringLiteral("action"), QStringLiteral("a.MAIN")},
        {QStringLiteral("data"), QStringLiteral("file:///x")},
        {QStringLiteral("type"), QStringLiteral("text/plain")},
        {QStringLiteral("flags"), 0x10004000}, {QStringLiteral("package"), QStringLiteral("p.one")},
        {QStringLiteral("component"),
            QJsonObject{{QStringLiteral("package"), QStringLiteral("p.two")},
                {QStringLiteral("class"), QStringLiteral("p.Main")}}},
        {QStringLiteral("categories"), QJsonArray{QStringLiteral("LAUNCHER")}},
        {QStringLiteral("contentUserHint"), -2},
        {QStringLiteral("extras"),
            QJsonObject{{QStringLiteral("k"),
                QJsonObject{{QStringLiteral("type"), QStringLiteral("int")},
                    {QStringLiteral("value"), 3}}}}}};
    if (sdk >= 29)
        record.insert(QStringLiteral("identifier"), QStringLiteral(""));
    return record;
}

} // namespace

class TestAndroidIntent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFieldIsRead_data();
    void everyFieldIsRead();
    void whatIsNotThereIsNull();
    void itIsForItsPackageOrElseForItsComponents_data();
    void itIsForItsPackageOrElseForItsComponents();
    void damagedExtrasDoNotStopIt();
    void wrongIntentIsRefused_data();
    void wrongIntentIsRefused();
};

void TestAndroidIntent::everyFieldIsRead_data()
{
    QTest::addColumn<int>("sdk");
    QTest::newRow("27") << 27;
    QTest::newRow("28") << 28;
    QTest::newRow("29") << 29;
}

void TestAndroidIntent::everyFieldIsRead()
{
    QFETCH(int, sdk);
    AndroidParcel parcel(Words().bytes(sdk));
    const AndroidIntent intent = AndroidIntent::read(parcel, sdk);
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(intent.record, fullRecord(sdk));
}

void TestAndroidIntent::whatIsNotThereIsNull()
{
    AndroidParcel parcel(string16(QStringLiteral("a")) + word(0) + nullString() + word(0)
        + nullString() + nullString() + word(0) + word(0) + word(0) + word(0) + word(-2)
        + word(-1));
    const AndroidIntent intent = AndroidIntent::read(parcel, 28);
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    const QJsonObject record{{QStringLiteral("action"), QStringLiteral("a")},
        {QStringLiteral("data"), QJsonValue()}, {QStringLiteral("type"), QJsonValue()},
        {QStringLiteral("flags"), 0}, {QStringLiteral("package"), QJsonValue()},
        {QStringLiteral("component"), QJsonValue()}, {QStringLiteral("categories"), QJsonArray()},
        {QStringLiteral("contentUserHint"), -2}, {QStringLiteral("extras"), QJsonValue()}};
    QCOMPARE(intent.record, record);
    QVERIFY(intent.package.isNull());
}

void TestAndroidIntent::itIsForItsPackageOrElseForItsComponents_data()
{
    QTest::addColumn<QByteArray>("package");
    QTest::addColumn<QByteArray>("component");
    QTest::addColumn<QString>("isFor");
    const Words words;
    QTest::newRow("both") << words.package << words.component << QStringLiteral("p.one");
    QTest::newRow("component") << nullString() << words.component << QStringLiteral("p.two");
    QTest::newRow("package") << words.package << nullString() << QStringLiteral("p.one");
    QTest::newRow("neither") << nullString() << nullString() << QString();
}

void TestAndroidIntent::itIsForItsPackageOrElseForItsComponents()
{
    QFETCH(QByteArray, package);
    QFETCH(QByteArray, component);
    QFETCH(QString, isFor);
    Words words;
    words.package = package;
    words.component = component;
    AndroidParcel parcel(words.bytes(29));
    QCOMPARE(AndroidIntent::read(parcel, 29).package, isFor);
    QCOMPARE(parcel.error(), QString());
}

void TestAndroidIntent::damagedExtrasDoNotStopIt()
{
    Words words;
    words.extras = bundle(1, string16(QStringLiteral("k")));
    AndroidParcel parcel(words.bytes(29));
    const AndroidIntent intent = AndroidIntent::read(parcel, 29);
    parcel.finish();
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(intent.damage, QStringLiteral("4 bytes wanted before offset 12 of 12"));
    QCOMPARE(intent.package, QStringLiteral("p.one"));
}

void TestAndroidIntent::wrongIntentIsRefused_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, QByteArray Words::*field, const QByteArray &bytes,
                         const char *error) {
        Words words;
        words.*field = bytes;
        QTest::newRow(name) << 29 << words.bytes(29) << QString(QLatin1String(error));
    };
    row("Uri of many pieces", &Words::data, word(3), "Uri of type 3");
    row("Uri without a text", &Words::data, word(1) + string16({}), "Uri without a text");
    row("source bounds", &Words::sourceBounds, word(1), "Intent with source bounds");
    row("selector", &Words::selector, word(1), "Intent with a selector");
    row("clip data", &Words::clipData, word(1), "Intent with clip data");
    row("negative categories", &Words::categories, word(-1), "-1 categories");
    row("Bundle with another magic", &Words::extras, word(4) + word(0) + word(0),
        "Bundle's magic is 0x00000000");
    row("component of an empty package without a class", &Words::component, string16({}),
        "empty string16 without terminator");
    QTest::newRow("29 without the identifier")
        << 29 << Words().bytes(28) << QStringLiteral("536903684 bytes wanted");
    QTest::newRow("28 with the identifier")
        << 28 << Words().bytes(29) << QStringLiteral("empty string16 without terminator");
}

void TestAndroidIntent::wrongIntentIsRefused()
{
    QFETCH(int, sdk);
    QFETCH(QByteArray, data);
    QFETCH(QString, error);
    AndroidParcel parcel(data);
    AndroidIntent::read(parcel, sdk);
    QVERIFY2(parcel.error().startsWith(error), qPrintable(parcel.error()));
}

QTEST_APPLESS_MAIN(TestAndroidIntent)
#include "tst_androidintent.moc"
