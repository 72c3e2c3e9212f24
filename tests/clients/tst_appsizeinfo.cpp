// SPDX-License-Identifier: BSD-3-Clause
#include "clients/appsizeinfo.h"

#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusPendingReply>

#include <limits>

namespace {

/// Makes the value of its numbers, so that the way out and the way in are seen apart.
class Maker : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    AppSizeInfo make(qlonglong code, qlonglong data, qlonglong cache)
    {
        return {code, data, cache};
    }
    QList<AppSizeInfo> makeTwo(qlonglong code, qlonglong data, qlonglong cache)
    {
        return {{code, data, cache}, {cache, data, code}};
    }
};

} // namespace

class TestAppSizeInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        AppSizeInfo::registerMetaType();
        qDBusRegisterMetaType<QList<AppSizeInfo>>();
    }

    void newValueIsZeroThroughout();
    void typeIsKnownByItsName();
    void travelsAsThreeNumbersInTheirOrder_data();
    void travelsAsThreeNumbersInTheirOrder();
};

void TestAppSizeInfo::newValueIsZeroThroughout()
{
    const AppSizeInfo info;
    QCOMPARE(info.codeBytes, 0);
    QCOMPARE(info.dataBytes, 0);
    QCOMPARE(info.cacheBytes, 0);
}

void TestAppSizeInfo::typeIsKnownByItsName()
{
    QCOMPARE(QMetaType::type("AppSizeInfo"), qMetaTypeId<AppSizeInfo>());
    QCOMPARE(QByteArray(QDBusMetaType::typeToSignature(qMetaTypeId<AppSizeInfo>())),
        QByteArray("(xxx)"));
}

void TestAppSizeInfo::travelsAsThreeNumbersInTheirOrder_data()
{
    QTest::addColumn<qint64>("code");
    QTest::addColumn<qint64>("data");
    QTest::addColumn<qint64>("cache");

    using Limits = std::numeric_limits<qint64>;
    QTest::newRow("different") << qint64(1) << qint64(2) << qint64(3);
    QTest::newRow("zero") << qint64(0) << qint64(0) << qint64(0);
    QTest::newRow("unknown") << qint64(-1) << qint64(-1) << qint64(-1);
    QTest::newRow("beyond 32 bits") << Limits::max() << Limits::min() << qint64(0x100000000);
}

void TestAppSizeInfo::travelsAsThreeNumbersInTheirOrder()
{
    QFETCH(qint64, code);
    QFETCH(qint64, data);
    QFETCH(qint64, cache);

    const PrivateBus bus(PrivateBus::Kind::System);
    QDBusConnection server = QDBusConnection::connectToBus(bus.address(), QStringLiteral("server"));
    const QDBusConnection client =
        QDBusConnection::connectToBus(bus.address(), QStringLiteral("client"));
    Maker maker;
    QVERIFY(server.registerObject(QStringLiteral("/maker"), QStringLiteral("test.Maker"), &maker,
        QDBusConnection::ExportAllSlots));

    QDBusMessage call = QDBusMessage::createMethodCall(server.baseService(),
        QStringLiteral("/maker"), QStringLiteral("test.Maker"), QStringLiteral("make"));
    call << code << data << cache;
    const QDBusPendingReply<AppSizeInfo> reply = client.asyncCall(call);
    QTRY_VERIFY(reply.isFinished());
    QVERIFY2(reply.isValid(), qPrintable(reply.error().message()));
    QCOMPARE(reply.reply().signature(), QStringLiteral("(xxx)"));
    const AppSizeInfo info = reply.value();
    QCOMPARE(info.codeBytes, code);
    QCOMPARE(info.dataBytes, data);
    QCOMPARE(info.cacheBytes, cache);

    const auto raw = reply.reply().arguments().constFirst().value<QDBusArgument>();
    qlonglong first = 0;
    qlonglong second = 0;
    qlonglong third = 0;
    raw.beginStructure();
    raw >> first >> second >> third;
    raw.endStructure();
    QCOMPARE(first, code);
    QCOMPARE(second, data);
    QCOMPARE(third, cache);

    // Each ends where the next one begins.
    QDBusMessage callForTwo = QDBusMessage::createMethodCall(server.baseService(),
        QStringLiteral("/maker"), QStringLiteral("test.Maker"), QStringLiteral("makeTwo"));
    callForTwo << code << data << cache;
    const QDBusPendingReply<QList<AppSizeInfo>> two = client.asyncCall(callForTwo);
    QTRY_VERIFY(two.isFinished());
    QCOMPARE(two.value().size(), 2);
    QCOMPARE(two.value().last().codeBytes, cache);
    QCOMPARE(two.value().last().cacheBytes, code);
    QDBusConnection::disconnectFromBus(QStringLiteral("server"));
    QDBusConnection::disconnectFromBus(QStringLiteral("client"));
}

LUM_TEST_MAIN(TestAppSizeInfo)
#include "tst_appsizeinfo.moc"
