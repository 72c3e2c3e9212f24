// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <gbinder.h>

namespace {

const char *Device = "/dev/puddlejumper";
const QString Alien = QStringLiteral("alien");

GBinderLocalReply *answerNothing(
    GBinderLocalObject *, GBinderRemoteRequest *, guint, guint, int *, void *)
{
    return nullptr;
}

} // namespace

class TestLedger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWholeLifeIsRecordedInOrder();
    void failuresAreRecorded();
    void nullLeavesNoLine();
    void whatLivesOnIsALeak();
    void releasingTooOftenIsAnError();
    void aUseAfterTheReleaseIsAnError();
    void aServiceObjectLastsUntilTheLoopTurns();
    void aReaderOutlivedByItsReplyIsAnError();
    void aHandleOfAnotherKindIsAnError();
    void aPointerFromElsewhereIsAnError();
    void removingAHandlerTwiceIsAnError();
    void registrationAndDeathHandlersAreNotMixedUp();
};

void TestLedger::aWholeLifeIsRecordedInOrder()
{
    FakeBinder::registerService(Alien);
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    const gulong registration = gbinder_servicemanager_add_registration_handler(
        manager, "alien", [](GBinderServiceManager *, const char *, void *) { }, nullptr);
    GBinderRemoteObject *remote = gbinder_remote_object_ref(
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr));
    const gulong death = gbinder_remote_object_add_death_handler(
        remote, [](GBinderRemoteObject *, void *) { }, nullptr);
    GBinderClient *client = gbinder_client_new(remote, "a.IAlien");
    gbinder_servicemanager_remove_handler(manager, registration);
    GBinderLocalRequest *request = gbinder_client_new_request(client);
    GBinderRemoteReply *reply = gbinder_client_transact_sync_reply(client, 5, request, nullptr);
    gbinder_client_transact_sync_oneway(client, 6, request);
    gbinder_local_request_unref(request);
    gbinder_remote_reply_unref(reply);
    GBinderLocalObject *object =
        gbinder_servicemanager_new_local_object(manager, "a.ILauncher", answerNothing, nullptr);
    GBinderServiceName *name = gbinder_servicename_new(manager, object, "alien.launcher");
    gbinder_servicename_unref(name);
    gbinder_local_object_drop(object);
    gbinder_client_unref(client);
    gbinder_remote_object_remove_handler(remote, death);
    gbinder_remote_object_unref(remote);
    gbinder_servicemanager_unref(manager);
    QCOMPARE(FakeBinder::ledger(),
        texts({"servicemanager_new /dev/puddlejumper",
            "servicemanager_add_registration_handler alien 1",
            "servicemanager_get_service_sync alien", "remote_object_ref alien",
            "remote_object_add_death_handler alien 2", "client_new alien",
            "servicemanager_remove_handler 1", "client_new_request alien",
            "client_transact_sync_reply alien 5", "client_transact_sync_oneway alien 6",
            "local_request_unref alien", "remote_reply_unref alien",
            "servicemanager_new_local_object a.ILauncher", "servicename_new alien.launcher",
            "servicename_unref alien.launcher", "local_object_drop a.ILauncher",
            "client_unref alien", "remote_object_remove_handler alien 2",
            "remote_object_unref alien", "servicemanager_unref /dev/puddlejumper"}));
    QCOMPARE(FakeBinder::leaks(), QStringList());
    QCOMPARE(FakeBinder::errors(), QStringList());
    FakeBinder::clearLedger();
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestLedger::failuresAreRecorded()
{
    FakeBinder::setPresent(false);
    QVERIFY(!gbinder_servicemanager_new(Device));
    FakeBinder::setPresent(true);
    FakeBinder::registerService(Alien);
    FakeBinder::failClients(Alien);
    FakeBinder::failLocalObjects();
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    QVERIFY(!gbinder_servicemanager_get_service_sync(manager, "absent", nullptr));
    QVERIFY(!gbinder_client_new(
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr), "a.IAlien"));
    QVERIFY(!gbinder_servicemanager_new_local_object(manager, "a.I", answerNothing, nullptr));
    QVERIFY(!gbinder_servicename_new(manager, nullptr, "name"));
    FakeBinder::failLocalObjects(false);
    FakeBinder::failServiceNames();
    GBinderLocalObject *object =
        gbinder_servicemanager_new_local_object(manager, "a.I", answerNothing, nullptr);
    QVERIFY(!gbinder_servicename_new(manager, object, "name"));
    QCOMPARE(FakeBinder::ledger(),
        texts({"servicemanager_new /dev/puddlejumper failed",
            "servicemanager_new /dev/puddlejumper", "servicemanager_get_service_sync absent",
            "servicemanager_get_service_sync alien", "client_new alien failed",
            "servicemanager_new_local_object a.I failed", "servicename_new name failed",
            "servicemanager_new_local_object a.I", "servicename_new name failed"}));
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestLedger::nullLeavesNoLine()
{
    gbinder_servicemanager_unref(nullptr);
    gbinder_servicename_unref(nullptr);
    gbinder_local_object_drop(nullptr);
    gbinder_local_object_unref(nullptr);
    gbinder_remote_object_unref(nullptr);
    gbinder_client_unref(nullptr);
    gbinder_local_request_unref(nullptr);
    gbinder_local_reply_unref(nullptr);
    gbinder_remote_request_unref(nullptr);
    gbinder_remote_reply_unref(nullptr);
    QVERIFY(!gbinder_client_new(nullptr, "a.I"));
    QVERIFY(!gbinder_client_new_request(nullptr));
    int status = 99;
    QVERIFY(!gbinder_client_transact_sync_reply(nullptr, 1, nullptr, &status));
    QCOMPARE(status, 99);
    QCOMPARE(gbinder_client_transact_sync_oneway(nullptr, 1, nullptr), -EINVAL);
    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestLedger::whatLivesOnIsALeak()
{
    FakeBinder::registerService(Alien);
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    gbinder_servicemanager_add_registration_handler(
        manager, "alien", [](GBinderServiceManager *, const char *, void *) { }, nullptr);
    GBinderRemoteObject *remote =
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr);
    gbinder_remote_object_ref(gbinder_remote_object_ref(remote));
    gbinder_remote_object_add_death_handler(remote, [](GBinderRemoteObject *, void *) { }, nullptr);
    gbinder_client_new(remote, "a.IAlien");
    QCOMPARE(FakeBinder::leaks(),
        texts({"remote_object alien 2", "servicemanager /dev/puddlejumper", "client alien",
            "registration_handler alien 1", "death_handler alien 2"}));
}

void TestLedger::releasingTooOftenIsAnError()
{
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    gbinder_servicemanager_ref(manager);
    gbinder_servicemanager_unref(manager);
    gbinder_servicemanager_unref(manager);
    QCOMPARE(FakeBinder::errors(), QStringList());
    gbinder_servicemanager_unref(manager);
    QCOMPARE(
        FakeBinder::errors(), texts({"servicemanager_unref /dev/puddlejumper: released before"}));
    // The failed release is no release.
    QCOMPARE(FakeBinder::ledger().size(), 4);
}

void TestLedger::aUseAfterTheReleaseIsAnError()
{
    FakeBinder::registerService(Alien);
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    GBinderClient *client = gbinder_client_new(
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr), "a.I");
    GBinderLocalRequest *request = gbinder_client_new_request(client);
    GBinderWriter writer;
    gbinder_local_request_init_writer(request, &writer);
    gbinder_local_request_unref(request);
    gbinder_writer_append_int32(&writer, 1);
    QVERIFY(!gbinder_client_transact_sync_reply(client, 3, request, nullptr));
    gbinder_client_unref(client);
    QVERIFY(!gbinder_client_new_request(client));
    gbinder_servicemanager_unref(manager);
    QVERIFY(!gbinder_servicemanager_get_service_sync(manager, "alien", nullptr));
    QCOMPARE(FakeBinder::errors(),
        texts({"writer_append alien: released before", "client_transact alien: released before",
            "client_new_request alien: released before",
            "servicemanager_get_service_sync /dev/puddlejumper: released before"}));
    QVERIFY(FakeBinder::requests().isEmpty());
}

void TestLedger::aServiceObjectLastsUntilTheLoopTurns()
{
    FakeBinder::registerService(Alien);
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    GBinderRemoteObject *remote =
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr);
    QVERIFY(!gbinder_remote_object_is_dead(remote));
    gbinder_remote_object_unref(remote);
    QCOMPARE(FakeBinder::errors(), texts({"remote_object_unref alien: no reference to release"}));
    QCoreApplication::processEvents();
    gbinder_remote_object_ref(remote);
    QCOMPARE(
        FakeBinder::errors().last(), QStringLiteral("remote_object_ref alien: released before"));
    QCOMPARE(FakeBinder::errors().size(), 2);
}

void TestLedger::aReaderOutlivedByItsReplyIsAnError()
{
    FakeBinder::registerService(Alien,
        [](const FakeBinder::Request &) { return FakeBinder::Reply::data(QByteArray(8, '\0')); });
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    GBinderClient *client = gbinder_client_new(
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr), "a.I");
    GBinderRemoteReply *reply = gbinder_client_transact_sync_reply(client, 1, nullptr, nullptr);
    GBinderReader reader;
    gbinder_remote_reply_init_reader(reply, &reader);
    QVERIFY(gbinder_reader_read_int32(&reader, nullptr));
    gbinder_remote_reply_unref(reply);
    QVERIFY(!gbinder_reader_read_int32(&reader, nullptr));
    QCOMPARE(FakeBinder::errors(), texts({"reader of remote_reply alien: released before"}));
}

void TestLedger::aHandleOfAnotherKindIsAnError()
{
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    gbinder_client_unref(reinterpret_cast<GBinderClient *>(manager));
    QCOMPARE(
        FakeBinder::errors(), texts({"client_unref: given the servicemanager /dev/puddlejumper"}));
    QCOMPARE(FakeBinder::leaks(), texts({"servicemanager /dev/puddlejumper"}));
}

void TestLedger::aPointerFromElsewhereIsAnError()
{
    int elsewhere = 0;
    gbinder_client_unref(reinterpret_cast<GBinderClient *>(&elsewhere));
    QCOMPARE(FakeBinder::errors(), texts({"client_unref: not a handle"}));
}

void TestLedger::removingAHandlerTwiceIsAnError()
{
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    const gulong id = gbinder_servicemanager_add_registration_handler(
        manager, "alien", [](GBinderServiceManager *, const char *, void *) { }, nullptr);
    gbinder_servicemanager_remove_handler(manager, id);
    gbinder_servicemanager_remove_handler(manager, 0);
    QCOMPARE(FakeBinder::errors(), QStringList());
    gbinder_servicemanager_remove_handler(manager, id);
    QCOMPARE(FakeBinder::errors(), texts({"servicemanager_remove_handler 1: no such handler"}));
}

void TestLedger::registrationAndDeathHandlersAreNotMixedUp()
{
    FakeBinder::registerService(Alien);
    GBinderServiceManager *manager = gbinder_servicemanager_new(Device);
    GBinderRemoteObject *remote =
        gbinder_servicemanager_get_service_sync(manager, "alien", nullptr);
    const gulong id = gbinder_remote_object_add_death_handler(
        remote, [](GBinderRemoteObject *, void *) { }, nullptr);
    gbinder_servicemanager_remove_handler(manager, id);
    QCOMPARE(FakeBinder::errors(), texts({"servicemanager_remove_handler 1: no such handler"}));
    QCOMPARE(FakeBinder::leaks().last(), QStringLiteral("death_handler alien 1"));
}

LUM_TEST_MAIN(TestLedger)
#include "tst_ledger.moc"
