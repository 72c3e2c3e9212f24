// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindercallbackclient.h"
#include "binder/alienbindertransaction.h"
#include "tests/binder/androidpeer.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QPointer>
#include <QtTest>

#include <memory>
#include <utility>

using FakeBinder::Notice;
using FakeBinder::ParcelWriter;

namespace {

constexpr char interfaceName[] = "test.IToken";
const QString token = QStringLiteral("token");

/// Writes the events of a client's end, and the gbinder calls between them, one below the other.
class Story : public QObject, public AlienBinderDeathListener
{
    Q_OBJECT

public:
    void follow(AlienBinderCallbackClient *client)
    {
        connect(client, &AlienBinderCallbackClient::onConnectionChanged, this, [this](bool up) {
            add(up ? QStringLiteral("signal true") : QStringLiteral("signal false"));
        });
        connect(client, &QObject::destroyed, this, [this] { add(QStringLiteral("destroyed")); });
        FakeBinder::clearLedger();
    }

    void died(AlienBinderCallbackClient *client) override
    {
        add(QStringLiteral("died"));
        lastDead = client;
    }

    QStringList take()
    {
        collect();
        return std::exchange(m_lines, {});
    }

    const AlienBinderCallbackClient *lastDead = nullptr;

private:
    void add(const QString &line)
    {
        collect();
        m_lines.append(line);
    }

    void collect()
    {
        m_lines.append(FakeBinder::ledger());
        FakeBinder::clearLedger();
    }

    QStringList m_lines;
};

} // namespace

class TestAlienBinderCallbackClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nullObjectGivesNoClient();
    void takesOverTheReferenceOfTheCaller();
    void releasesInOrder();
    void deathIsToldBeforeTheClientGoes_data();
    void deathIsToldBeforeTheClientGoes();
    void deathOfAnotherObjectIsNotHeard();
    void deathAfterTheEndIsNotHeard();
    void transactionReachesTheObject_data();
    void transactionReachesTheObject();
    void transactionGoesWithTheClient();
    void transactionIsOrphanedByDeath();
    void clientThatCannotBeMadeGivesNoTransaction();
    void deathIsToldWithoutAClientToo();

private:
    /// Reads the object as a call of the runtime would hand it over.
    GBinderRemoteObject *receiveObject(quint32 id)
    {
        GBinderRemoteObject *object = nullptr;
        const ParcelWriter bytes = ParcelWriter().remoteObject(id);
        m_peer.receive(
            bytes.bytes(), [&object](AlienBinderParcel &parcel) { object = parcel.readObject(); },
            bytes.offsets());
        return object;
    }

    AlienBinderCallbackClient *create() { return create(m_id); }

    AlienBinderCallbackClient *create(quint32 id)
    {
        auto *const client =
            AlienBinderCallbackClient::create(&m_story, receiveObject(id), interfaceName);
        m_story.follow(client);
        return client;
    }

    AndroidPeer m_peer;
    Story m_story;
    quint32 m_id = 0;
};

void TestAlienBinderCallbackClient::init()
{
    m_id = FakeBinder::newRemoteObject(token, [](const FakeBinder::Request &) {
        return FakeBinder::Reply::data(ParcelWriter().int32(8).bytes());
    });
    m_story.lastDead = nullptr;
}

void TestAlienBinderCallbackClient::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
    QCOMPARE(FakeBinder::leaks().filter(token), QStringList());
}

void TestAlienBinderCallbackClient::nullObjectGivesNoClient()
{
    FakeBinder::clearLedger();
    QCOMPARE(AlienBinderCallbackClient::create(&m_story, nullptr, interfaceName), nullptr);
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestAlienBinderCallbackClient::takesOverTheReferenceOfTheCaller()
{
    GBinderRemoteObject *const object = receiveObject(m_id);
    FakeBinder::clearLedger();
    const std::unique_ptr<AlienBinderCallbackClient> client(
        AlienBinderCallbackClient::create(&m_story, object, interfaceName));
    QVERIFY(client);
    QVERIFY(client->client());
    QCOMPARE(client->parent(), nullptr);
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new token", "remote_object_add_death_handler token 1"}));
    QVERIFY(FakeBinder::leaks().contains(QStringLiteral("remote_object token")));
}

void TestAlienBinderCallbackClient::releasesInOrder()
{
    delete create();
    QCOMPARE(m_story.take(),
        texts({"client_unref token", "remote_object_remove_handler token 1",
            "remote_object_unref token", "destroyed"}));
}

void TestAlienBinderCallbackClient::deathIsToldBeforeTheClientGoes_data()
{
    QTest::addColumn<bool>("isDeferred");
    QTest::newRow("from the main loop") << true;
    QTest::newRow("at once") << false;
}

void TestAlienBinderCallbackClient::deathIsToldBeforeTheClientGoes()
{
    QFETCH(bool, isDeferred);
    const QPointer<AlienBinderCallbackClient> client = create();
    const AlienBinderCallbackClient *const address = client;
    const QString handler =
        FakeBinder::leaks().filter(QStringLiteral("death_handler token")).value(0);

    FakeBinder::killRemoteObject(m_id, isDeferred ? Notice::Deferred : Notice::Synchronous);

    QTRY_VERIFY(!client);
    QCOMPARE(m_story.lastDead, address);
    QCOMPARE(m_story.take(),
        QStringList({QStringLiteral("died"), QStringLiteral("signal false"),
            QStringLiteral("client_unref token"),
            QStringLiteral("remote_object_remove_handler token ")
                + handler.section(QLatin1Char(' '), -1),
            QStringLiteral("remote_object_unref token"), QStringLiteral("destroyed")}));
}

void TestAlienBinderCallbackClient::deathOfAnotherObjectIsNotHeard()
{
    const quint32 otherId = FakeBinder::newRemoteObject(QStringLiteral("other"));
    const QPointer<AlienBinderCallbackClient> client = create();
    const QPointer<AlienBinderCallbackClient> other = create(otherId);
    const AlienBinderCallbackClient *const address = other;

    FakeBinder::killRemoteObject(otherId, Notice::Synchronous);

    QVERIFY(!other);
    QCOMPARE(m_story.lastDead, address);
    QCOMPARE(m_story.take().filter(QStringLiteral("died")).size(), 1);
    QVERIFY(client);
    delete client;
}

void TestAlienBinderCallbackClient::deathAfterTheEndIsNotHeard()
{
    delete create();
    m_story.take();
    FakeBinder::killRemoteObject(m_id, Notice::Synchronous);
    QCOMPARE(m_story.take(), QStringList());
}

void TestAlienBinderCallbackClient::transactionReachesTheObject_data()
{
    QTest::addColumn<quint32>("code");
    QTest::addColumn<bool>("oneway");
    QTest::newRow("with reply") << 5U << false;
    QTest::newRow("oneway") << 7U << true;
}

void TestAlienBinderCallbackClient::transactionReachesTheObject()
{
    QFETCH(quint32, code);
    QFETCH(bool, oneway);
    const std::unique_ptr<AlienBinderCallbackClient> client(create());

    AlienBinderTransaction *const transaction = client->transaction(code, oneway);
    QVERIFY(transaction);
    QCOMPARE(transaction->parent(), client.get());
    transaction->inputParcel()->writeInt32(4);
    QCOMPARE(transaction->execute(), 0);

    const FakeBinder::Request request = FakeBinder::requests().last();
    QCOMPARE(request.service, token);
    QCOMPARE(request.interface, QLatin1String(interfaceName));
    QCOMPARE(request.code, code);
    QCOMPARE(request.flags, oneway ? 1U : 0U);
    QCOMPARE(request.payload, ParcelWriter().int32(4).bytes());
    if (!oneway)
        QCOMPARE(transaction->outputParcel()->readInt32(), 8);
}

void TestAlienBinderCallbackClient::transactionGoesWithTheClient()
{
    AlienBinderCallbackClient *const client = create();
    const QPointer<AlienBinderTransaction> transaction = client->transaction(1, false);
    delete client;
    QVERIFY(!transaction);
}

void TestAlienBinderCallbackClient::transactionIsOrphanedByDeath()
{
    AlienBinderCallbackClient *const client = create();
    const std::unique_ptr<AlienBinderTransaction> transaction(client->transaction(1, false));
    // Else it would go with the client, before anybody can ask it.
    transaction->setParent(nullptr);
    FakeBinder::clearRequests();

    FakeBinder::killRemoteObject(m_id, Notice::Synchronous);

    QCOMPARE(transaction->execute(), -1);
    QCOMPARE(FakeBinder::requests().size(), 0);
}

void TestAlienBinderCallbackClient::clientThatCannotBeMadeGivesNoTransaction()
{
    FakeBinder::failClients(token);
    AlienBinderCallbackClient *const client = create();
    FakeBinder::failClients(token, false);
    QVERIFY(client);
    QCOMPARE(client->client(), nullptr);
    QCOMPARE(client->transaction(1, false), nullptr);
    delete client;
    QCOMPARE(m_story.take(),
        texts({"remote_object_remove_handler token 1", "remote_object_unref token", "destroyed"}));
}

void TestAlienBinderCallbackClient::deathIsToldWithoutAClientToo()
{
    FakeBinder::failClients(token);
    create();
    FakeBinder::failClients(token, false);
    FakeBinder::killRemoteObject(m_id, Notice::Synchronous);
    QCOMPARE(m_story.take(),
        texts({"died", "signal false", "remote_object_remove_handler token 1",
            "remote_object_unref token", "destroyed"}));
}

LUM_TEST_MAIN(TestAlienBinderCallbackClient)
#include "tst_alienbindercallbackclient.moc"
