// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderparcel.h"
#include "binder/gbinderhandles.h"
#include "binder/localrequest.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::ParcelWriter;

namespace {

constexpr char serviceName[] = "test.service";
constexpr char interfaceName[] = "test.IService";

/// An object that doubles the number it is given, and knows or does not know the call.
struct Doubler
{
    bool isKnown = true;
    bool isWithoutObject = false;
    qint32 lastNumber = 0;

    static GBinderLocalReply *transact(GBinderLocalObject *object, GBinderRemoteRequest *request,
        guint code, guint flags, int *status, void *data)
    {
        Q_UNUSED(code)
        auto *const self = static_cast<Doubler *>(data);
        return handleLocalRequest(self->isWithoutObject ? nullptr : object, request, flags, status,
            [self](AlienBinderParcel *in, AlienBinderParcel *out) {
                self->lastNumber = in->readInt32();
                out->writeInt32(self->lastNumber * 2);
                return self->isKnown;
            });
    }
};

} // namespace

class TestLocalRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callIsAnsweredByItsFlagsAndOutcome_data();
    void callIsAnsweredByItsFlagsAndOutcome();
    void replyThatCannotBeMadeIsNull();
};

void TestLocalRequest::callIsAnsweredByItsFlagsAndOutcome_data()
{
    QTest::addColumn<quint32>("flags");
    QTest::addColumn<bool>("isKnown");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("reply");

    const QByteArray doubled = ParcelWriter().int32(42).bytes();
    QTest::newRow("known") << 0U << true << 0 << doubled;
    QTest::newRow("unknown") << 0U << false << 1 << doubled;
    QTest::newRow("other flags") << 0x10U << true << 0 << doubled;
    QTest::newRow("oneway, known") << 1U << true << 0 << QByteArray();
    QTest::newRow("oneway, unknown") << 1U << false << 1 << QByteArray();
    QTest::newRow("oneway among other flags") << 0x11U << true << 0 << QByteArray();
}

void TestLocalRequest::callIsAnsweredByItsFlagsAndOutcome()
{
    QFETCH(quint32, flags);
    QFETCH(bool, isKnown);
    QFETCH(int, status);
    QFETCH(QByteArray, reply);
    Doubler doubler;
    doubler.isKnown = isKnown;
    const GBinder::ServiceManager manager(gbinder_servicemanager_new("/dev/puddlejumper"));
    const GBinder::LocalObject object(gbinder_servicemanager_new_local_object(
        manager.get(), interfaceName, &Doubler::transact, &doubler));
    const GBinder::ServiceName name(
        gbinder_servicename_new(manager.get(), object.get(), serviceName));
    FakeBinder::clearLedger();

    const FakeBinder::Answer answer = FakeBinder::transact(QLatin1String(serviceName),
        {7, QLatin1String(interfaceName), ParcelWriter().int32(21).bytes(), {}, flags, -99});

    QVERIFY(answer.delivered);
    QCOMPARE(doubler.lastNumber, 21);
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.hasReply, !reply.isEmpty());
    QCOMPARE(answer.bytes, reply);
    QCOMPARE(FakeBinder::ledger(),
        reply.isEmpty() ? QStringList() : texts({"local_object_new_reply test.IService"}));
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestLocalRequest::replyThatCannotBeMadeIsNull()
{
    Doubler doubler;
    doubler.isWithoutObject = true;
    const GBinder::ServiceManager manager(gbinder_servicemanager_new("/dev/puddlejumper"));
    const GBinder::LocalObject object(gbinder_servicemanager_new_local_object(
        manager.get(), interfaceName, &Doubler::transact, &doubler));
    const GBinder::ServiceName name(
        gbinder_servicename_new(manager.get(), object.get(), serviceName));

    const FakeBinder::Answer answer = FakeBinder::transact(QLatin1String(serviceName),
        {7, QLatin1String(interfaceName), ParcelWriter().int32(21).bytes(), {}, 0, -99});

    // The call is carried out all the same.
    QCOMPARE(doubler.lastNumber, 21);
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.hasReply);
    QCOMPARE(FakeBinder::errors(), QStringList());
}

LUM_TEST_MAIN(TestLocalRequest)
#include "tst_localrequest.moc"
