// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <gbinder.h>

using FakeBinder::ParcelWriter;

namespace {

const QString Alien = QStringLiteral("alien");

/// A local object that keeps what it is called with.
struct Calls
{
    QStringList seen;
    QByteArray reply; ///< what it answers; null for no reply
    int status = 0;

    static GBinderLocalReply *called(GBinderLocalObject *object, GBinderRemoteRequest *request,
        guint code, guint flags, int *status, void *data)
    {
        auto *self = static_cast<Calls *>(data);
        GBinderReader reader;
        gbinder_remote_request_init_reader(request, &reader);
        self->seen.append(QStringLiteral("code %1 flags %2 status %3 %4 payload %5")
                .arg(code)
                .arg(flags)
                .arg(*status)
                .arg(QString::fromUtf8(gbinder_remote_request_interface(request)))
                .arg(gbinder_reader_bytes_remaining(&reader)));
        *status = self->status;
        if (self->reply.isNull())
            return nullptr;
        GBinderLocalReply *reply = gbinder_local_object_new_reply(object);
        GBinderWriter writer;
        gbinder_local_reply_init_writer(reply, &writer);
        gbinder_writer_append_bytes(&writer, self->reply.constData(), gsize(self->reply.size()));
        return reply;
    }
};

} // namespace

class TestFakeLocalObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void publishedServicesAreListed();
    void aPublishedServiceIsCalled();
    void aOnewayCallReachesTheObject();
    void aServiceThatIsNotThereIsNotCalled();
    void aDroppedObjectIsNotCalled();
    void anObjectThatWasHandedOverIsCalled();

private:
    GBinderLocalObject *publish(GBinderServiceName **name = nullptr);

    Calls m_calls;
    GBinderServiceManager *m_manager = nullptr;
};

void TestFakeLocalObject::init()
{
    m_manager = gbinder_servicemanager_new("/dev/puddlejumper");
}

GBinderLocalObject *TestFakeLocalObject::publish(GBinderServiceName **name)
{
    GBinderLocalObject *object =
        gbinder_servicemanager_new_local_object(m_manager, "a.IObject", Calls::called, &m_calls);
    GBinderServiceName *published = gbinder_servicename_new(m_manager, object, "alien.launcher");
    if (name)
        *name = published;
    return object;
}

void TestFakeLocalObject::publishedServicesAreListed()
{
    QVERIFY(FakeBinder::published().isEmpty());
    GBinderServiceName *name = nullptr;
    publish(&name);
    QCOMPARE(name->name, "alien.launcher");
    const QVector<FakeBinder::PublishedService> expected = {
        {QStringLiteral("alien.launcher"), QStringLiteral("a.IObject"), 1}};
    QCOMPARE(FakeBinder::published(), expected);
    gbinder_servicename_ref(name);
    gbinder_servicename_unref(name);
    QCOMPARE(FakeBinder::published(), expected);
    gbinder_servicename_unref(name);
    QVERIFY(FakeBinder::published().isEmpty());
}

void TestFakeLocalObject::aPublishedServiceIsCalled()
{
    publish();
    m_calls.reply = QByteArray("abcd");
    m_calls.status = 1;
    FakeBinder::Call call;
    call.code = 4;
    call.interface = QStringLiteral("a.IObject");
    call.payload = ParcelWriter().int32(1).int32(2).bytes();
    call.initialStatus = -9;
    const FakeBinder::Answer answer = FakeBinder::transact(QStringLiteral("alien.launcher"), call);
    QCOMPARE(m_calls.seen, texts({"code 4 flags 0 status -9 a.IObject payload 8"}));
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 1);
    QVERIFY(answer.hasReply);
    QCOMPARE(answer.bytes, QByteArray("abcd"));
    // The library takes the handler's reference.
    QVERIFY(!FakeBinder::leaks().join(QLatin1Char(' ')).contains(QStringLiteral("local_reply")));
}

void TestFakeLocalObject::aOnewayCallReachesTheObject()
{
    publish();
    FakeBinder::Call call;
    call.code = 4;
    call.flags = GBINDER_TX_FLAG_ONEWAY;
    call.interface = QStringLiteral("a.IObject");
    const FakeBinder::Answer answer = FakeBinder::transact(QStringLiteral("alien.launcher"), call);
    QCOMPARE(m_calls.seen, texts({"code 4 flags 1 status 0 a.IObject payload 0"}));
    QVERIFY(answer.delivered && !answer.hasReply);
}

void TestFakeLocalObject::aServiceThatIsNotThereIsNotCalled()
{
    FakeBinder::Call call;
    call.initialStatus = -9;
    const FakeBinder::Answer answer = FakeBinder::transact(QStringLiteral("absent"), call);
    QVERIFY(!answer.delivered);
    QCOMPARE(answer.status, -9);
    QVERIFY(!FakeBinder::transactObject(17, call).delivered);
}

void TestFakeLocalObject::aDroppedObjectIsNotCalled()
{
    gbinder_local_object_drop(gbinder_local_object_ref(publish()));
    QVERIFY(!FakeBinder::transact(QStringLiteral("alien.launcher"), {}).delivered);
    QCOMPARE(m_calls.seen, QStringList());
    QCOMPARE(FakeBinder::leaks().filter(QStringLiteral("local_object")),
        texts({"local_object a.IObject"}));
}

void TestFakeLocalObject::anObjectThatWasHandedOverIsCalled()
{
    FakeBinder::registerService(Alien);
    GBinderClient *client = gbinder_client_new(
        gbinder_servicemanager_get_service_sync(m_manager, "alien", nullptr), "a.IAlien");
    GBinderLocalRequest *request = gbinder_client_new_request(client);
    gbinder_local_request_append_local_object(request,
        gbinder_servicemanager_new_local_object(m_manager, "a.IObserver", Calls::called, &m_calls));
    gbinder_client_transact_sync_reply(client, 7, request, nullptr);
    FakeBinder::Call call;
    call.code = 2;
    call.interface = QStringLiteral("a.IObserver");
    const quint32 observer = FakeBinder::requests().first().localObjects.first();
    QVERIFY(FakeBinder::transactObject(observer, call).delivered);
    QCOMPARE(m_calls.seen, texts({"code 2 flags 0 status 0 a.IObserver payload 0"}));
}

LUM_TEST_MAIN(TestFakeLocalObject)
#include "tst_fakelocalobject.moc"
