// SPDX-License-Identifier: BSD-3-Clause
#include "clients/clientcall.h"

#include "clients/transactioncodes.h"
#include "tests/binder/androidpeer.h"
#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;

class TestClientCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void sendsTheParcelAndGivesTheReply();
    void failedCallHasItsStatusAndNoReply();
    void failedCallMayHaveAReply();
    void callWithoutReplyIsNoFailure();
    void releasesTheRequestThenTheReply();
    void sendsNothingUntilItIsMade();
    void withoutALinkDoesNothing();

private:
    AndroidPeer m_peer;
};

void TestClientCall::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
    // The manager, the service's object and the client of the peer itself.
    QCOMPARE(FakeBinder::leaks().size(), 3);
}

void TestClientCall::sendsTheParcelAndGivesTheReply()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(9).bytes()));
    ClientCall call(m_peer.client());
    call.parcel().writeInt32(5);
    call.parcel().writeString(QStringLiteral("a"));
    AlienBinderParcel reply(call.transact(17));
    QCOMPARE(reply.readInt32(), 9);
    QCOMPARE(call.status(), 0);
    QCOMPARE(takeCalls(),
        QStringList(
            callText("peer", "test.IPeer", 17, body().int32(5).string16(QStringLiteral("a")))));
}

void TestClientCall::failedCallHasItsStatusAndNoReply()
{
    m_peer.setReply(Reply::failure(-32));
    ClientCall call(m_peer.client());
    QCOMPARE(call.transact(1), nullptr);
    QCOMPARE(call.status(), -32);
}

void TestClientCall::failedCallMayHaveAReply()
{
    m_peer.setReply(Reply::failureWith(-5, ParcelWriter().int32(9).bytes()));
    ClientCall call(m_peer.client());
    AlienBinderParcel reply(call.transact(1));
    QCOMPARE(reply.readInt32(), 9);
    QCOMPARE(call.status(), -5);
}

void TestClientCall::callWithoutReplyIsNoFailure()
{
    m_peer.setReply(Reply::none());
    ClientCall call(m_peer.client());
    QCOMPARE(call.transact(1), nullptr);
    QCOMPARE(call.status(), 0);
}

void TestClientCall::releasesTheRequestThenTheReply()
{
    FakeBinder::clearLedger();
    {
        ClientCall call(m_peer.client());
        call.transact(1);
    }
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request peer", "client_transact_sync_reply peer 1",
            "local_request_unref peer", "remote_reply_unref peer"}));
}

void TestClientCall::sendsNothingUntilItIsMade()
{
    FakeBinder::clearLedger();
    {
        ClientCall call(m_peer.client());
        call.parcel().writeInt32(5);
        QCOMPARE(call.status(), 0);
    }
    QCOMPARE(FakeBinder::ledger(), texts({"client_new_request peer", "local_request_unref peer"}));
}

void TestClientCall::withoutALinkDoesNothing()
{
    LogCapture log;
    FakeBinder::clearLedger();
    {
        ClientCall call(nullptr);
        call.parcel().writeInt32(5);
        call.parcel().writeLocalObject(nullptr);
        QCOMPARE(call.transact(1), nullptr);
        // There is no runtime that has a level.
        QCOMPARE(call.transact(TransactionCodes{1, 2, 3}), nullptr);
        QCOMPARE(call.status(), 0);
    }
    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(log.take(), QStringList());
}

LUM_TEST_MAIN(TestClientCall)
#include "tst_clientcall.moc"
