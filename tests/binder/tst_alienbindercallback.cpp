// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindercallback.h"
#include "binder/alienbinderparcel.h"
#include "binder/alienbindertransaction.h"
#include "tests/binder/connection.h"
#include "tests/binder/runtimetest.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QPointer>
#include <QtTest>

#include <memory>

using FakeBinder::ParcelWriter;

namespace {

const QString alien = QStringLiteral("alien");
const QString active = QStringLiteral("active");
const QString deactivating = QStringLiteral("deactivating");
constexpr char interfaceName[] = "test.ICallback";

class Handler : public AlienBinderRequestHandler
{
public:
    bool processRequest(quint32 code, AlienBinderParcel *in, AlienBinderParcel *out) override
    {
        lastCode = code;
        lastValue = in->readInt32();
        out->writeInt32(lastValue + 1);
        return handles;
    }

    bool handles = true;
    quint32 lastCode = 0;
    qint32 lastValue = 0;
};

FakeBinder::Call call(quint32 code, qint32 value, quint32 flags = 0)
{
    // A status that the callback never gives, so that one that was not stored shows.
    return {
        code, QLatin1String(interfaceName), ParcelWriter().int32(value).bytes(), {}, flags, -99};
}

/// Hands the callback to the runtime in a call. Gives the id by which the runtime calls it.
quint32 handOver(AlienBinderConnection &connection, AlienBinderCallback *callback)
{
    const std::unique_ptr<AlienBinderTransaction> transaction(connection.transaction(1, false));
    transaction->inputParcel()->writeLocalObject(callback->localObject());
    transaction->execute();
    return FakeBinder::requests().last().localObjects.value(0);
}

} // namespace

class TestAlienBinderCallback : public RuntimeTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void callReachesTheHandler_data();
    void callReachesTheHandler();
    void isMadeByAConnectionAsItsChild();
    void isNullWithoutALink();
    void isDroppedWhenTheLinkGoes();
    void secondLossOfTheLinkDropsNothing();
    void linkUpChangesNothing();
    void isDroppedWhenDestroyed();
    void goesWithItsConnection();
    void objectThatCannotBeMadeIsNull();

private:
    Handler m_handler;
};

void TestAlienBinderCallback::init()
{
    m_handler = {};
    FakeBinder::registerService(alien, {}, FakeBinder::Notice::None);
    m_unit->startOutAs(active);
}

void TestAlienBinderCallback::callReachesTheHandler_data()
{
    QTest::addColumn<quint32>("flags");
    QTest::addColumn<bool>("handles");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("hasReply");
    QTest::newRow("handled") << 0U << true << 0 << true;
    QTest::newRow("not handled") << 0U << false << 1 << true;
    QTest::newRow("oneway") << 1U << true << 0 << false;
    QTest::newRow("oneway, not handled") << 1U << false << 1 << false;
    QTest::newRow("oneway among other flags") << 0x11U << true << 0 << false;
    QTest::newRow("other flags alone") << 0x10U << true << 0 << true;
}

void TestAlienBinderCallback::callReachesTheHandler()
{
    QFETCH(quint32, flags);
    QFETCH(bool, handles);
    QFETCH(int, status);
    QFETCH(bool, hasReply);
    Connection connection(persistent);
    const quint32 object = handOver(connection, connection.callback(interfaceName, &m_handler));
    m_handler.handles = handles;
    FakeBinder::clearLedger();

    const FakeBinder::Answer answer = FakeBinder::transactObject(object, call(6, 41, flags));

    QVERIFY(answer.delivered);
    QCOMPARE(m_handler.lastCode, 6U);
    QCOMPARE(m_handler.lastValue, 41);
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.hasReply, hasReply);
    QCOMPARE(answer.bytes, hasReply ? ParcelWriter().int32(42).bytes() : QByteArray());
    QCOMPARE(FakeBinder::ledger(),
        hasReply ? texts({"local_object_new_reply test.ICallback"}) : QStringList());
}

void TestAlienBinderCallback::isMadeByAConnectionAsItsChild()
{
    Connection connection(persistent);
    FakeBinder::clearLedger();
    const AlienBinderCallback *const callback = connection.callback(interfaceName, &m_handler);
    QVERIFY(callback);
    QVERIFY(callback->localObject());
    QCOMPARE(callback->parent(), &connection);
    QCOMPARE(FakeBinder::ledger(), texts({"servicemanager_new_local_object test.ICallback"}));
}

void TestAlienBinderCallback::isNullWithoutALink()
{
    FakeBinder::unregisterService(alien);
    Connection connection(onDemand);
    FakeBinder::clearLedger();
    QCOMPARE(connection.callback(interfaceName, &m_handler), nullptr);
    QCOMPARE(FakeBinder::ledger(), texts({"servicemanager_get_service_sync alien"}));

    FakeBinder::registerService(alien);
    QVERIFY(connection.callback(interfaceName, &m_handler));
}

void TestAlienBinderCallback::isDroppedWhenTheLinkGoes()
{
    Connection connection(persistent);
    const QPointer<AlienBinderCallback> callback = connection.callback(interfaceName, &m_handler);
    const quint32 object = handOver(connection, callback);
    FakeBinder::clearLedger();

    QVERIFY(m_unit->become(deactivating));

    QVERIFY(callback);
    QCOMPARE(callback->localObject(), nullptr);
    QCOMPARE(FakeBinder::ledger().filter(QStringLiteral("local_object")),
        texts({"local_object_drop test.ICallback"}));
    QVERIFY(!FakeBinder::transactObject(object, call(6, 41)).delivered);
    QCOMPARE(m_handler.lastCode, 0U);

    // Nothing brings it back.
    QVERIFY(m_unit->become(active));
    QVERIFY(connection.client());
    QCOMPARE(callback->localObject(), nullptr);
}

void TestAlienBinderCallback::secondLossOfTheLinkDropsNothing()
{
    Connection connection(persistent);
    AlienBinderCallback *const callback = connection.callback(interfaceName, &m_handler);
    FakeBinder::clearLedger();
    callback->onConnectionChanged(false);
    callback->onConnectionChanged(false);
    QCOMPARE(FakeBinder::ledger(), texts({"local_object_drop test.ICallback"}));
    delete callback;
    QCOMPARE(FakeBinder::ledger(), texts({"local_object_drop test.ICallback"}));
}

void TestAlienBinderCallback::linkUpChangesNothing()
{
    Connection connection(persistent);
    AlienBinderCallback *const callback = connection.callback(interfaceName, &m_handler);
    const GBinderLocalObject *const object = callback->localObject();
    FakeBinder::clearLedger();
    callback->onConnectionChanged(true);
    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(callback->localObject(), object);
}

void TestAlienBinderCallback::isDroppedWhenDestroyed()
{
    Connection connection(persistent);
    AlienBinderCallback *const callback = connection.callback(interfaceName, &m_handler);
    const quint32 object = handOver(connection, callback);
    FakeBinder::clearLedger();
    delete callback;
    QCOMPARE(FakeBinder::ledger(), texts({"local_object_drop test.ICallback"}));
    QVERIFY(!FakeBinder::transactObject(object, call(6, 41)).delivered);

    // The link that goes later does not touch what has gone already.
    QVERIFY(m_unit->become(deactivating));
}

void TestAlienBinderCallback::goesWithItsConnection()
{
    auto connection = std::make_unique<Connection>(persistent);
    const QPointer<AlienBinderCallback> callback = connection->callback(interfaceName, &m_handler);
    QVERIFY(callback);
    FakeBinder::clearLedger();
    connection.reset();
    QVERIFY(!callback);
    QCOMPARE(FakeBinder::ledger().filter(QStringLiteral("local_object")),
        texts({"local_object_drop test.ICallback"}));
}

void TestAlienBinderCallback::objectThatCannotBeMadeIsNull()
{
    Connection connection(persistent);
    FakeBinder::failLocalObjects();
    AlienBinderCallback *const callback = connection.callback(interfaceName, &m_handler);
    QVERIFY(callback);
    QCOMPARE(callback->localObject(), nullptr);
    FakeBinder::clearLedger();
    callback->onConnectionChanged(false);
    delete callback;
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

LUM_TEST_MAIN(TestAlienBinderCallback)
#include "tst_alienbindercallback.moc"
