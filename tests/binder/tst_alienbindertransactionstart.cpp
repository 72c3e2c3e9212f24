// SPDX-License-Identifier: BSD-3-Clause
// Calls that nobody waits for.
#include "binder/alienbindertransaction.h"
#include "tests/binder/transactiontest.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <dlfcn.h>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;

namespace {

const char noReply[] = "debug com.tovra.lumd.binder No reply available";

/// What finished() told, each time that it was emitted.
class Ends : public QList<qint32>
{
public:
    explicit Ends(AlienBinderTransaction &transaction)
    {
        QObject::connect(&transaction, &AlienBinderTransaction::finished, &transaction,
            [this](qint32 status) { append(status); });
    }
};

const QList<qint32> none;

bool callsFail = false;

} // namespace

/// In front of the fake library's.
gulong gbinder_client_transact(GBinderClient *client, guint32 call, guint32 flags,
    GBinderLocalRequest *request, GBinderClientReplyFunc reply, GDestroyNotify destroy, void *data)
{
    static const auto next = reinterpret_cast<decltype(&gbinder_client_transact)>(
        dlsym(RTLD_NEXT, "gbinder_client_transact"));
    return callsFail ? 0 : next(client, call, flags, request, reply, destroy, data);
}

class TestAlienBinderTransactionStart : public TransactionTest
{
    Q_OBJECT

private Q_SLOTS:
    void callThatCannotBeStartedLeavesNothingBehind();
    void replyOfAFailedCallIsKept();

    void replyIsReadOnceTheCallHasFinished();
    void statusIsTheOneOfTheCall_data();
    void statusIsTheOneOfTheCall();
    void missingReplyIsTold();
    void onewayCallHasNoReply();
    void secondCallIsRefused();
    void failedCallMayBeRepeated();
    void withoutALinkThereIsNoCall();

    void handlesAreReleasedInOrder();
    void linkDownGivesTheCallUp();
    void linkDownAfterTheReplyTellsNothing();
    void deletionGivesTheCallUp();
    void deletionByTheListenerIsHarmless();
    void whatIsHeldIsReleasedWithTheAnswer();
    void whatACallHeldThatWasGivenUpIsReleasedWithTheAnswer();
};

void TestAlienBinderTransactionStart::replyIsReadOnceTheCallHasFinished()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(1).bytes()));
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    transaction.inputParcel()->writeInt32(5);
    QVERIFY(transaction.start());
    QCOMPARE(ends, none);
    QCOMPARE(FakeBinder::requests().size(), 1);
    QCOMPARE(FakeBinder::requests().first().code, code);
    QCOMPARE(FakeBinder::requests().first().flags, 0U);
    QCOMPARE(FakeBinder::requests().first().payload, ParcelWriter().int32(5).bytes());
    QTRY_COMPARE(ends, QList<qint32>{0});
    QCOMPARE(transaction.outputParcel()->readInt32(), 1);
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderTransactionStart::statusIsTheOneOfTheCall_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("failed") << -1;
    QTest::newRow("dead object") << -32;
    QTest::newRow("of the service's own") << 5;
}

void TestAlienBinderTransactionStart::statusIsTheOneOfTheCall()
{
    QFETCH(int, status);
    m_peer.setReply(Reply::failure(status));
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start());
    QTRY_COMPARE(ends, QList<qint32>{status});
    QCOMPARE(log.lines(), texts({noReply}));
}

void TestAlienBinderTransactionStart::missingReplyIsTold()
{
    m_peer.setReply(Reply::none());
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start());
    QTRY_COMPARE(ends, QList<qint32>{0});
    QCOMPARE(log.lines(), texts({noReply}));
}

void TestAlienBinderTransactionStart::onewayCallHasNoReply()
{
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, oneway, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start());
    QCOMPARE(FakeBinder::requests().first().flags, quint32(GBINDER_TX_FLAG_ONEWAY));
    QTRY_COMPARE(ends, QList<qint32>{0});
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderTransactionStart::secondCallIsRefused()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start());
    QVERIFY(!transaction.start());
    QCOMPARE(transaction.execute(), -1);
    QTRY_COMPARE(ends, QList<qint32>{0});
    QVERIFY(!transaction.start());
    QCOMPARE(transaction.execute(), -1);
    QCOMPARE(FakeBinder::requests().size(), 1);
}

void TestAlienBinderTransactionStart::failedCallMayBeRepeated()
{
    m_peer.setReply(Reply::failure(-1));
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start());
    QTRY_COMPARE(ends, QList<qint32>{-1});
    m_peer.setReply(Reply::data({}));
    QVERIFY(transaction.start());
    QTRY_COMPARE(ends, QList<qint32>({-1, 0}));
}

void TestAlienBinderTransactionStart::withoutALinkThereIsNoCall()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    transaction.onConnectionChanged(false);
    QVERIFY(!transaction.start());
    AlienBinderTransaction clientless(nullptr, code, withReply, nullptr);
    QVERIFY(!clientless.start());
    QCoreApplication::processEvents();
    QCOMPARE(ends, none);
    QCOMPARE(FakeBinder::requests().size(), 0);
}

void TestAlienBinderTransactionStart::handlesAreReleasedInOrder()
{
    {
        AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
        Ends ends(transaction);
        QVERIFY(transaction.start());
        QTRY_COMPARE(ends.size(), 1);
    }
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request peer", "client_ref peer", "client_transact peer 17",
            "client_unref peer", "remote_reply_ref peer", "local_request_unref peer",
            "remote_reply_unref peer"}));
}

void TestAlienBinderTransactionStart::linkDownGivesTheCallUp()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start());
    transaction.onConnectionChanged(false);
    QCOMPARE(ends, QList<qint32>{-1});
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request peer", "client_ref peer", "client_transact peer 17",
            "client_cancel peer", "client_unref peer"}));
    QCoreApplication::processEvents();
    transaction.onConnectionChanged(false);
    QCOMPARE(ends, QList<qint32>{-1});
}

void TestAlienBinderTransactionStart::linkDownAfterTheReplyTellsNothing()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start());
    QTRY_COMPARE(ends, QList<qint32>{0});
    transaction.onConnectionChanged(false);
    QCOMPARE(ends, QList<qint32>{0});
}

void TestAlienBinderTransactionStart::deletionGivesTheCallUp()
{
    m_peer.setReply(Reply::after(20, Reply::data({})));
    const auto held = std::make_shared<char>();
    {
        AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
        QVERIFY(transaction.start(held));
    }
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request peer", "client_ref peer", "client_transact peer 17",
            "client_cancel peer", "client_unref peer", "local_request_unref peer"}));
    QTRY_COMPARE(held.use_count(), 1L);
    QCOMPARE(FakeBinder::ledger().size(), 6);
}

void TestAlienBinderTransactionStart::deletionByTheListenerIsHarmless()
{
    const auto held = std::make_shared<char>();
    auto *const transaction = new AlienBinderTransaction(m_peer.client(), code, withReply, nullptr);
    connect(transaction, &AlienBinderTransaction::finished, this,
        [transaction] { delete transaction; });
    QVERIFY(transaction->start(held));
    QTRY_COMPARE(held.use_count(), 1L);
}

void TestAlienBinderTransactionStart::whatIsHeldIsReleasedWithTheAnswer()
{
    m_peer.setReply(Reply::after(20, Reply::data({})));
    const auto held = std::make_shared<char>();
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    Ends ends(transaction);
    QVERIFY(transaction.start(held));
    QCOMPARE(held.use_count(), 2L);
    QTRY_COMPARE(held.use_count(), 1L);
    QCOMPARE(ends, QList<qint32>{0});
}

void TestAlienBinderTransactionStart::whatACallHeldThatWasGivenUpIsReleasedWithTheAnswer()
{
    m_peer.setReply(Reply::never());
    const auto held = std::make_shared<char>();
    auto transaction =
        std::make_unique<AlienBinderTransaction>(m_peer.client(), code, withReply, nullptr);
    QVERIFY(transaction->start(held));
    transaction.reset();
    QCoreApplication::processEvents();
    QCOMPARE(held.use_count(), 2L);
    // The one way to an answer from a service that gives none.
    FakeBinder::killService(QStringLiteral("peer"));
    QTRY_COMPARE(held.use_count(), 1L);
}

void TestAlienBinderTransactionStart::callThatCannotBeStartedLeavesNothingBehind()
{
    const auto held = std::make_shared<char>();
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    const Ends ends(transaction);
    FakeBinder::clearLedger();
    callsFail = true;
    QVERIFY(!transaction.start(held));
    callsFail = false;
    QCOMPARE(held.use_count(), 1L);
    QCOMPARE(FakeBinder::ledger(), texts({"client_ref peer", "client_unref peer"}));
    // It may be tried again.
    QVERIFY(transaction.start());
    QTRY_COMPARE(ends, QList<qint32>{0});
}

void TestAlienBinderTransactionStart::replyOfAFailedCallIsKept()
{
    m_peer.setReply(Reply::failureWith(-5, ParcelWriter().int32(7).bytes()));
    AlienBinderTransaction waited(m_peer.client(), code, withReply, nullptr);
    QCOMPARE(waited.execute(), -5);
    QCOMPARE(waited.outputParcel()->readInt32(), 7);

    AlienBinderTransaction started(m_peer.client(), code, withReply, nullptr);
    const Ends ends(started);
    QVERIFY(started.start());
    QTRY_COMPARE(ends.size(), 1);
    QCOMPARE(ends.first(), -5);
    QCOMPARE(started.outputParcel()->readInt32(), 7);
}

LUM_TEST_MAIN(TestAlienBinderTransactionStart)
#include "tst_alienbindertransactionstart.moc"
