// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/intentextras.h"
#include "tests/support/testmain.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

namespace {

QVariant variant(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

QVariant descriptor()
{
    return QVariant::fromValue(QDBusUnixFileDescriptor(0));
}

QVariant container()
{
    QDBusArgument argument;
    argument << QStringList{QStringLiteral("a")};
    return QVariant::fromValue(argument);
}

} // namespace

class TestIntentExtras : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void descriptorsAreLeftOut_data();
    void descriptorsAreLeftOut();
    void containersAreEmptied_data();
    void containersAreEmptied();
    void othersStayAsTheyAre_data();
    void othersStayAsTheyAre();
};

void TestIntentExtras::descriptorsAreLeftOut_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("h") << descriptor();
    QTest::newRow("h that is closed") << QVariant::fromValue(QDBusUnixFileDescriptor());
    QTest::newRow("v of h") << variant(descriptor());
    QTest::newRow("v of v of v of h") << variant(variant(variant(descriptor())));
}

void TestIntentExtras::descriptorsAreLeftOut()
{
    QFETCH(QVariant, value);
    const QVariantMap others{{QStringLiteral("a"), 1}, {QStringLiteral("c"), true}};
    QVariantMap extras = others;
    extras.insert(QStringLiteral("b"), value);
    QCOMPARE(withoutDescriptors(extras), others);
}

void TestIntentExtras::containersAreEmptied_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("container") << container() << QByteArray("QDBusArgument");
    QTest::newRow("v of container") << variant(container()) << QByteArray("QDBusVariant");
    QTest::newRow("v of v of container")
        << variant(variant(container())) << QByteArray("QDBusVariant");
}

void TestIntentExtras::containersAreEmptied()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, type);
    const QVariantMap kept = withoutDescriptors({{QStringLiteral("k"), value}});
    QCOMPARE(kept.keys(), QStringList{QStringLiteral("k")});
    const QVariant left = kept.first();
    QCOMPARE(QByteArray(left.typeName()), type);
    QVERIFY(!left.isNull());
    if (type == "QDBusVariant")
        QVERIFY(!left.value<QDBusVariant>().variant().isValid());
    else
        QCOMPARE(left.value<QDBusArgument>().currentSignature(), QString());
}

void TestIntentExtras::othersStayAsTheyAre_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("string") << QVariant(QStringLiteral("a"));
    QTest::newRow("double") << QVariant(0.5);
    QTest::newRow("strings") << QVariant(QStringList{QStringLiteral("a")});
    QTest::newRow("bytes") << QVariant(QByteArray("a"));
    QTest::newRow("path") << QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a")));
    QTest::newRow("nothing") << QVariant();
}

void TestIntentExtras::othersStayAsTheyAre()
{
    QFETCH(QVariant, value);
    const QVariantMap kept = withoutDescriptors({{QStringLiteral("k"), value}});
    QCOMPARE(kept.value(QStringLiteral("k")), value);
    QCOMPARE(kept.size(), 1);
    const QVariantMap nested = withoutDescriptors({{QStringLiteral("k"), variant(variant(value))}});
    QCOMPARE(nested.first().value<QDBusVariant>().variant().value<QDBusVariant>().variant(), value);
}

LUM_TEST_MAIN(TestIntentExtras)
#include "tst_intentextras.moc"
