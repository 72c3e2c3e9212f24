// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <gbinder.h>

using FakeBinder::Notice;
using FakeBinder::ParcelWriter;

namespace {

const QString Alien = QStringLiteral("alien");
const QString Interface = QStringLiteral("a.IAlien");

/// What the callbacks of gbinder left behind.
struct Calls
{
    QStringList seen;

    static void registered(GBinderServiceManager *, const char *name, void *self)
    {
        static_cast<Calls *>(self)->seen.append(
            QLatin1String("registered ") + QString::fromUtf8(name));
    }
    static void died(GBinderRemoteObject *, void *self)
    {
        static_cast<Calls *>(self)->seen.append(QStringLiteral("died"));
    }
};

} // namespace

class TestFakeGBinder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void requestsAreRecorded();
    void aServiceSeesItsRequestAndAnswers();
    void aFailureAndAMissingReplyAreNoReply();
    void aFailureMayComeWithAReply();
    void aRequestThatIsToFailIsNull();
    void onewayCallsCarryTheFlag();
    void aNewServiceIsAnnouncedFromTheLoop();
    void aNewServiceIsAnnouncedAtOnceWhenAsked();
    void aHandlerThatIsRemovedInTimeIsNotCalled();
    void handlersOfOtherNamesAreNotCalled();
    void deathIsAnnouncedFromTheLoop();
    void aDeadServiceAnswersNothing();
    void aServiceThatIsRegisteredAgainIsAnother();
    void anUnregisteredServiceLivesOn();
    void anObjectOfAndroidIsRead();
    void readingOnBehindMissingPaddingIsAnError();

private:
    GBinderClient *newClient();

    Calls m_calls;
    GBinderServiceManager *m_manager = nullptr;
};

void TestFakeGBinder::init()
{
    m_manager = gbinder_servicemanager_new("/dev/puddlejumper");
}

GBinderClient *TestFakeGBinder::newClient()
{
    return gbinder_client_new(
        gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr), "a.IAlien");
}

void TestFakeGBinder::requestsAreRecorded()
{
    FakeBinder::registerService(Alien);
    GBinderClient *client = newClient();
    GBinderLocalRequest *request = gbinder_client_new_request(client);
    gbinder_local_request_append_int32(request, 5);
    gbinder_local_request_append_local_object(
        request, gbinder_servicemanager_new_local_object(m_manager, "a.IObject", nullptr, nullptr));
    gbinder_client_transact_sync_reply(client, 7, request, nullptr);
    const QVector<FakeBinder::Request> requests = FakeBinder::requests();
    QCOMPARE(requests.size(), 1);
    const FakeBinder::Request &sent = requests.first();
    QCOMPARE(sent.service, Alien);
    QCOMPARE(sent.code, 7U);
    QCOMPARE(sent.flags, 0U);
    QCOMPARE(sent.interface, Interface);
    QCOMPARE(sent.payload.toHex(), ParcelWriter().int32(5).localObject(1).bytes().toHex());
    QCOMPARE(sent.bytes.size(), 28 + 28);
    QCOMPARE(sent.offsets, QVector<int>{28 + 4});
    QCOMPARE(sent.localObjects, QVector<quint32>{1});
    FakeBinder::clearRequests();
    QVERIFY(FakeBinder::requests().isEmpty());
}

void TestFakeGBinder::aServiceSeesItsRequestAndAnswers()
{
    quint32 code = 0;
    FakeBinder::registerService(Alien, [&code](const FakeBinder::Request &request) {
        code = request.code;
        return FakeBinder::Reply::data(ParcelWriter().int32(0).int32(42).bytes());
    });
    int status = 99;
    GBinderRemoteReply *reply =
        gbinder_client_transact_sync_reply(newClient(), 3, nullptr, &status);
    QCOMPARE(code, 3U);
    QCOMPARE(status, 0);
    GBinderReader reader;
    gbinder_remote_reply_init_reader(reply, &reader);
    gint32 value = 0;
    QVERIFY(gbinder_reader_read_int32(&reader, &value));
    QVERIFY(gbinder_reader_read_int32(&reader, &value));
    QCOMPARE(value, 42);
}

void TestFakeGBinder::aFailureAndAMissingReplyAreNoReply()
{
    FakeBinder::Reply answer = FakeBinder::Reply::failure(-74);
    FakeBinder::registerService(Alien, [&answer](const FakeBinder::Request &) { return answer; });
    GBinderClient *client = newClient();
    int status = 99;
    QVERIFY(!gbinder_client_transact_sync_reply(client, 3, nullptr, &status));
    QCOMPARE(status, -74);
    answer = FakeBinder::Reply::none();
    QVERIFY(!gbinder_client_transact_sync_reply(client, 3, nullptr, &status));
    QCOMPARE(status, 0);
}

void TestFakeGBinder::aFailureMayComeWithAReply()
{
    FakeBinder::registerService(Alien,
        [](const FakeBinder::Request &) { return FakeBinder::Reply::failureWith(-5, "abcd"); });
    int status = 99;
    GBinderRemoteReply *const reply =
        gbinder_client_transact_sync_reply(newClient(), 3, nullptr, &status);
    QCOMPARE(status, -5);
    GBinderReader reader;
    gbinder_remote_reply_init_reader(reply, &reader);
    QCOMPARE(gbinder_reader_bytes_remaining(&reader), gsize(4));
}

void TestFakeGBinder::aRequestThatIsToFailIsNull()
{
    FakeBinder::registerService(Alien);
    GBinderClient *client = newClient();
    FakeBinder::failRequests();
    QVERIFY(!gbinder_client_new_request(client));
    FakeBinder::failRequests(false);
    QVERIFY(gbinder_client_new_request(client));
}

void TestFakeGBinder::onewayCallsCarryTheFlag()
{
    FakeBinder::registerService(Alien);
    QCOMPARE(gbinder_client_transact_sync_oneway(newClient(), 3, nullptr), 0);
    QCOMPARE(FakeBinder::requests().first().flags, quint32(GBINDER_TX_FLAG_ONEWAY));
}

void TestFakeGBinder::aNewServiceIsAnnouncedFromTheLoop()
{
    gbinder_servicemanager_add_registration_handler(
        m_manager, "alien", Calls::registered, &m_calls);
    FakeBinder::registerService(Alien);
    QCOMPARE(m_calls.seen, QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(m_calls.seen, texts({"registered alien"}));
}

void TestFakeGBinder::aNewServiceIsAnnouncedAtOnceWhenAsked()
{
    gbinder_servicemanager_add_registration_handler(
        m_manager, "alien", Calls::registered, &m_calls);
    FakeBinder::registerService(Alien, {}, Notice::Synchronous);
    QCOMPARE(m_calls.seen, texts({"registered alien"}));
    FakeBinder::notifyRegistration(Alien, Notice::Synchronous);
    QCOMPARE(m_calls.seen.size(), 2);
    FakeBinder::registerService(Alien, {}, Notice::None);
    QCoreApplication::processEvents();
    QCOMPARE(m_calls.seen.size(), 2);
}

void TestFakeGBinder::aHandlerThatIsRemovedInTimeIsNotCalled()
{
    const gulong id = gbinder_servicemanager_add_registration_handler(
        m_manager, "alien", Calls::registered, &m_calls);
    FakeBinder::registerService(Alien);
    gbinder_servicemanager_remove_handler(m_manager, id);
    QCoreApplication::processEvents();
    QCOMPARE(m_calls.seen, QStringList());
}

void TestFakeGBinder::handlersOfOtherNamesAreNotCalled()
{
    gbinder_servicemanager_add_registration_handler(
        m_manager, "alarm", Calls::registered, &m_calls);
    FakeBinder::registerService(Alien, {}, Notice::Synchronous);
    QCOMPARE(m_calls.seen, QStringList());
}

void TestFakeGBinder::deathIsAnnouncedFromTheLoop()
{
    FakeBinder::registerService(Alien);
    GBinderRemoteObject *remote = gbinder_remote_object_ref(
        gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr));
    gbinder_remote_object_add_death_handler(remote, Calls::died, &m_calls);
    FakeBinder::killService(Alien);
    QVERIFY(gbinder_remote_object_is_dead(remote));
    QCOMPARE(m_calls.seen, QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(m_calls.seen, texts({"died"}));
    QVERIFY(!gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr));
}

void TestFakeGBinder::aDeadServiceAnswersNothing()
{
    bool called = false;
    FakeBinder::registerService(Alien, [&called](const FakeBinder::Request &) {
        called = true;
        return FakeBinder::Reply();
    });
    GBinderClient *client = newClient();
    FakeBinder::killService(Alien, Notice::None);
    int status = 0;
    QVERIFY(!gbinder_client_transact_sync_reply(client, 3, nullptr, &status));
    QCOMPARE(status, int(GBINDER_STATUS_DEAD_OBJECT));
    QCOMPARE(gbinder_client_transact_sync_oneway(client, 3, nullptr), status);
    QVERIFY(!called);
    QCOMPARE(FakeBinder::requests().size(), 2);
}

void TestFakeGBinder::aServiceThatIsRegisteredAgainIsAnother()
{
    FakeBinder::registerService(Alien);
    GBinderRemoteObject *first =
        gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr);
    QCOMPARE(gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr), first);
    FakeBinder::killService(Alien);
    FakeBinder::registerService(Alien);
    GBinderRemoteObject *second =
        gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr);
    QVERIFY(second && second != first);
    QVERIFY(!gbinder_remote_object_is_dead(second));
}

void TestFakeGBinder::anUnregisteredServiceLivesOn()
{
    FakeBinder::registerService(Alien);
    GBinderClient *client = newClient();
    FakeBinder::unregisterService(Alien);
    QVERIFY(!gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr));
    QVERIFY(gbinder_client_transact_sync_reply(client, 3, nullptr, nullptr));
}

void TestFakeGBinder::anObjectOfAndroidIsRead()
{
    bool called = false;
    const quint32 id = FakeBinder::newRemoteObject(
        QStringLiteral("listener"), [&called](const FakeBinder::Request &) {
            called = true;
            return FakeBinder::Reply();
        });
    const ParcelWriter parcel = ParcelWriter().remoteObject(id);
    FakeBinder::registerService(Alien, [&parcel](const FakeBinder::Request &) {
        return FakeBinder::Reply{0, true, parcel.bytes(), parcel.offsets()};
    });
    GBinderRemoteReply *reply =
        gbinder_client_transact_sync_reply(newClient(), 7, nullptr, nullptr);
    GBinderRemoteObject *object = gbinder_remote_reply_read_object(reply);
    QVERIFY(object);
    QCOMPARE(FakeBinder::ledger().last(), QStringLiteral("reader_read_object listener"));
    gbinder_client_transact_sync_reply(gbinder_client_new(object, "a.I"), 1, nullptr, nullptr);
    QVERIFY(called);
    gbinder_remote_object_add_death_handler(object, Calls::died, &m_calls);
    FakeBinder::killRemoteObject(id, Notice::Synchronous);
    QCOMPARE(m_calls.seen, texts({"died"}));
    gbinder_remote_object_unref(object);
    QVERIFY(FakeBinder::errors().isEmpty());
}

void TestFakeGBinder::readingOnBehindMissingPaddingIsAnError()
{
    FakeBinder::registerService(Alien, [](const FakeBinder::Request &) {
        return FakeBinder::Reply::data(ParcelWriter().int32(1).raw("a").bytes());
    });
    GBinderRemoteReply *reply =
        gbinder_client_transact_sync_reply(newClient(), 7, nullptr, nullptr);
    GBinderReader reader;
    gbinder_remote_reply_init_reader(reply, &reader);
    gsize length = 0;
    QVERIFY(gbinder_reader_read_byte_array(&reader, &length));
    QCOMPARE(length, gsize(1));
    QVERIFY(gbinder_reader_at_end(&reader));
    QCOMPARE(FakeBinder::errors(), QStringList());
    QVERIFY(!gbinder_reader_read_int32(&reader, nullptr));
    QCOMPARE(FakeBinder::errors(), texts({"reader of remote_reply alien: beyond the end"}));
}

LUM_TEST_MAIN(TestFakeGBinder)
#include "tst_fakegbinder.moc"
