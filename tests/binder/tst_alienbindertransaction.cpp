// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindertransaction.h"
#include "tests/binder/transactiontest.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;

namespace {

const char inputRefused[] =
    "warning com.tovra.lumd.binder Cannot create input parcel. Returning empty";
const char outputRefused[] =
    "warning com.tovra.lumd.binder Cannot create output parcel. Returning empty";
const char noReply[] = "debug com.tovra.lumd.binder No reply available";
const char destroyedLine[] = "debug com.tovra.lumd.binder Destroying transaction 17";

} // namespace

class TestAlienBinderTransaction : public TransactionTest
{
    Q_OBJECT

private Q_SLOTS:
    void sendsWhatWasWrittenAndReadsTheReply();
    void inputParcelIsTheSameEachTime();
    void outputParcelIsTheSameEachTime();
    void executeWithoutInputSendsTheHeaderAlone();
    void statusIsTheOneOfTheCall_data();
    void statusIsTheOneOfTheCall();
    void runsOnceAfterAGoodReply();
    void failedCallMayBeRepeated();
    void noReplyLeavesAnEmptyOutputParcel();
    void outputParcelBeforeExecuteIsEmpty();

    void onewayCallSendsTheFlagAndHasNoReply();
    void onewayCallGivesTheStatusOfTheCall();
    void onewayCallMayBeRepeated();

    void linkDownBeforeUseLeavesEmptyParcels();
    void linkDownAfterInputKeepsTheParcelAndSendsNothing();
    void linkDownAfterReplyRefusesTheOutputParcel();
    void linkDownKeepsTheOutputParcelInUse();
    void linkDownReleasesNothing();
    void linkUpChangesNothing();
    void linkUpDoesNotBringTheClientBack();
    void nullClientLeavesEmptyParcels();
    void requestThatCannotBeMadeIsNotSent();

    void emptyParcelsBelongToTheTransaction();
    void deletedBeforeExecuteSendsNothing();
    void releasesTheRequestThenTheReply();
    void goesWithItsParent();
    void debugLinesAreOffByDefault();
};

void TestAlienBinderTransaction::sendsWhatWasWrittenAndReadsTheReply()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(1).string16(QStringLiteral("yes")).bytes()));
    LogCapture log;
    {
        AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
        transaction.inputParcel()->writeInt32(5);
        transaction.inputParcel()->writeString(QStringLiteral("a"));

        QCOMPARE(transaction.execute(), 0);

        QCOMPARE(transaction.outputParcel()->readInt32(), 1);
        QCOMPARE(transaction.outputParcel()->readString(), QStringLiteral("yes"));
    }
    QCOMPARE(log.lines(), texts({destroyedLine}));
    QCOMPARE(FakeBinder::requests().size(), 1);
    const FakeBinder::Request request = FakeBinder::requests().first();
    QCOMPARE(request.service, QStringLiteral("peer"));
    QCOMPARE(request.interface, QStringLiteral("test.IPeer"));
    QCOMPARE(request.code, code);
    QCOMPARE(request.flags, 0U);
    QCOMPARE(request.payload, ParcelWriter().int32(5).string16(QStringLiteral("a")).bytes());
}

void TestAlienBinderTransaction::inputParcelIsTheSameEachTime()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    AlienBinderParcel *const input = transaction.inputParcel();
    QVERIFY(input);
    QCOMPARE(transaction.inputParcel(), input);
}

void TestAlienBinderTransaction::outputParcelIsTheSameEachTime()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(1).int32(2).bytes()));
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    transaction.execute();
    AlienBinderParcel *const output = transaction.outputParcel();
    QCOMPARE(output->readInt32(), 1);
    QCOMPARE(transaction.outputParcel(), output);
    QCOMPARE(transaction.outputParcel()->readInt32(), 2);
}

void TestAlienBinderTransaction::executeWithoutInputSendsTheHeaderAlone()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    QCOMPARE(transaction.execute(), 0);
    QCOMPARE(FakeBinder::requests().size(), 1);
    QCOMPARE(FakeBinder::requests().first().payload, QByteArray());
    QCOMPARE(FakeBinder::requests().first().interface, QStringLiteral("test.IPeer"));
}

void TestAlienBinderTransaction::statusIsTheOneOfTheCall_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("failed") << -1;
    QTest::newRow("dead object") << -32;
    QTest::newRow("of the service's own") << 5;
}

void TestAlienBinderTransaction::statusIsTheOneOfTheCall()
{
    QFETCH(int, status);
    m_peer.setReply(Reply::failure(status));
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    QCOMPARE(transaction.execute(), status);
}

void TestAlienBinderTransaction::runsOnceAfterAGoodReply()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(1).int32(2).bytes()));
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    QCOMPARE(transaction.execute(), 0);
    QCOMPARE(transaction.outputParcel()->readInt32(), 1);

    m_peer.setReply(Reply::data(ParcelWriter().int32(3).bytes()));
    QCOMPARE(transaction.execute(), -1);

    QCOMPARE(FakeBinder::requests().size(), 1);
    QCOMPARE(transaction.outputParcel()->readInt32(), 2);
}

void TestAlienBinderTransaction::failedCallMayBeRepeated()
{
    m_peer.setReply(Reply::failure(-1));
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    transaction.inputParcel()->writeInt32(5);
    QCOMPARE(transaction.execute(), -1);

    m_peer.setReply(Reply::data(ParcelWriter().int32(1).bytes()));
    QCOMPARE(transaction.execute(), 0);

    QCOMPARE(FakeBinder::requests().size(), 2);
    QCOMPARE(FakeBinder::requests().last().payload, ParcelWriter().int32(5).bytes());
    QCOMPARE(transaction.outputParcel()->readInt32(), 1);
}

void TestAlienBinderTransaction::noReplyLeavesAnEmptyOutputParcel()
{
    m_peer.setReply(Reply::none());
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);

    QCOMPARE(transaction.execute(), 0);
    QCOMPARE(log.take(), texts({noReply}));

    QCOMPARE(transaction.outputParcel()->readBool(), false);
    QCOMPARE(log.take(), texts({outputRefused}));
    QCOMPARE(transaction.outputParcel()->readInt32(), -1);
    QCOMPARE(log.take(), texts({outputRefused}));
}

void TestAlienBinderTransaction::outputParcelBeforeExecuteIsEmpty()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(1).bytes()));
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);

    QCOMPARE(transaction.outputParcel()->readInt32(), -1);
    QCOMPARE(log.take(), texts({outputRefused}));

    // The refusal was not kept.
    QCOMPARE(transaction.execute(), 0);
    QCOMPARE(transaction.outputParcel()->readInt32(), 1);
    QCOMPARE(log.take(), QStringList());
}

void TestAlienBinderTransaction::onewayCallSendsTheFlagAndHasNoReply()
{
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, oneway, nullptr);
    transaction.inputParcel()->writeInt32(5);

    QCOMPARE(transaction.execute(), 0);

    QCOMPARE(FakeBinder::requests().size(), 1);
    QCOMPARE(FakeBinder::requests().first().flags, quint32(GBINDER_TX_FLAG_ONEWAY));
    QCOMPARE(FakeBinder::requests().first().code, code);
    QCOMPARE(FakeBinder::requests().first().payload, ParcelWriter().int32(5).bytes());
    QCOMPARE(log.take(), QStringList());
    QCOMPARE(transaction.outputParcel()->readBool(), false);
    QCOMPARE(log.take(), texts({outputRefused}));
}

void TestAlienBinderTransaction::onewayCallGivesTheStatusOfTheCall()
{
    m_peer.setReply(Reply::failure(-5));
    AlienBinderTransaction transaction(m_peer.client(), code, oneway, nullptr);
    QCOMPARE(transaction.execute(), -5);
}

void TestAlienBinderTransaction::onewayCallMayBeRepeated()
{
    AlienBinderTransaction transaction(m_peer.client(), code, oneway, nullptr);
    QCOMPARE(transaction.execute(), 0);
    QCOMPARE(transaction.execute(), 0);
    QCOMPARE(FakeBinder::requests().size(), 2);
}

void TestAlienBinderTransaction::linkDownBeforeUseLeavesEmptyParcels()
{
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    transaction.onConnectionChanged(false);

    transaction.inputParcel()->writeInt32(5);
    QCOMPARE(log.take(), texts({inputRefused}));
    transaction.inputParcel()->writeInt32(6);
    QCOMPARE(log.take(), texts({inputRefused}));
    QCOMPARE(transaction.execute(), -1);
    QCOMPARE(log.take(), QStringList());
    QCOMPARE(transaction.outputParcel()->readInt32(), -1);
    QCOMPARE(log.take(), texts({outputRefused}));
    QCOMPARE(FakeBinder::requests().size(), 0);
}

void TestAlienBinderTransaction::linkDownAfterInputKeepsTheParcelAndSendsNothing()
{
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    AlienBinderParcel *const input = transaction.inputParcel();
    input->writeInt32(5);
    transaction.onConnectionChanged(false);

    QCOMPARE(transaction.inputParcel(), input);
    input->writeInt32(6);
    QCOMPARE(transaction.execute(), -1);

    QCOMPARE(FakeBinder::requests().size(), 0);
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderTransaction::linkDownAfterReplyRefusesTheOutputParcel()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(1).bytes()));
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    QCOMPARE(transaction.execute(), 0);
    transaction.onConnectionChanged(false);

    QCOMPARE(transaction.outputParcel()->readInt32(), -1);
    QCOMPARE(log.lines(), texts({outputRefused}));
}

void TestAlienBinderTransaction::linkDownKeepsTheOutputParcelInUse()
{
    m_peer.setReply(Reply::data(ParcelWriter().int32(1).int32(2).bytes()));
    LogCapture log;
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    QCOMPARE(transaction.execute(), 0);
    AlienBinderParcel *const output = transaction.outputParcel();
    QCOMPARE(output->readInt32(), 1);
    transaction.onConnectionChanged(false);

    QCOMPARE(transaction.outputParcel(), output);
    QCOMPARE(output->readInt32(), 2);
    QCOMPARE(log.lines(), QStringList());
}

void TestAlienBinderTransaction::linkDownReleasesNothing()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    QCOMPARE(transaction.execute(), 0);
    FakeBinder::clearLedger();
    transaction.onConnectionChanged(false);
    QCOMPARE(FakeBinder::ledger(), QStringList());
}

void TestAlienBinderTransaction::linkUpChangesNothing()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    transaction.onConnectionChanged(true);
    QCOMPARE(transaction.execute(), 0);
    QCOMPARE(FakeBinder::requests().size(), 1);
}

void TestAlienBinderTransaction::linkUpDoesNotBringTheClientBack()
{
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    transaction.onConnectionChanged(false);
    transaction.onConnectionChanged(true);
    QCOMPARE(transaction.execute(), -1);
    QCOMPARE(FakeBinder::requests().size(), 0);
}

void TestAlienBinderTransaction::nullClientLeavesEmptyParcels()
{
    LogCapture log;
    {
        AlienBinderTransaction transaction(nullptr, code, withReply, nullptr);
        transaction.inputParcel()->writeInt32(5);
        QCOMPARE(transaction.execute(), -1);
        QCOMPARE(transaction.outputParcel()->readInt32(), -1);
    }
    QCOMPARE(log.lines(), texts({inputRefused, outputRefused, destroyedLine}));
}

void TestAlienBinderTransaction::requestThatCannotBeMadeIsNotSent()
{
    FakeBinder::failRequests();
    AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
    FakeBinder::failRequests(false);
    FakeBinder::clearLedger();
    LogCapture log;

    QCOMPARE(transaction.execute(), -1);
    QVERIFY(!transaction.start());
    transaction.inputParcel()->writeInt32(5);

    QCOMPARE(log.take(), texts({inputRefused}));
    QCOMPARE(FakeBinder::ledger(), QStringList());
    QCOMPARE(FakeBinder::requests().size(), 0);
}

void TestAlienBinderTransaction::emptyParcelsBelongToTheTransaction()
{
    LogCapture refused;
    AlienBinderTransaction transaction(nullptr, code, withReply, nullptr);
    QCOMPARE(transaction.inputParcel(), transaction.inputParcel());
    QCOMPARE(transaction.outputParcel(), transaction.outputParcel());
}

void TestAlienBinderTransaction::deletedBeforeExecuteSendsNothing()
{
    {
        AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
        transaction.inputParcel()->writeInt32(5);
    }
    QCOMPARE(FakeBinder::ledger(), texts({"client_new_request peer", "local_request_unref peer"}));
    QCOMPARE(FakeBinder::requests().size(), 0);
}

void TestAlienBinderTransaction::releasesTheRequestThenTheReply()
{
    {
        AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
        transaction.inputParcel();
        transaction.execute();
        transaction.outputParcel();
    }
    QCOMPARE(FakeBinder::ledger(),
        texts({"client_new_request peer", "client_transact_sync_reply peer 17",
            "local_request_unref peer", "remote_reply_unref peer"}));
}

void TestAlienBinderTransaction::goesWithItsParent()
{
    LogCapture log;
    {
        QObject parent;
        const auto *const transaction =
            new AlienBinderTransaction(m_peer.client(), code, withReply, &parent);
        QCOMPARE(transaction->parent(), &parent);
    }
    QCOMPARE(log.lines(), texts({destroyedLine}));
    QCOMPARE(FakeBinder::ledger(), texts({"client_new_request peer", "local_request_unref peer"}));
}

void TestAlienBinderTransaction::debugLinesAreOffByDefault()
{
    m_peer.setReply(Reply::none());
    LogCapture log(LogCapture::Level::Default);
    {
        AlienBinderTransaction transaction(m_peer.client(), code, withReply, nullptr);
        transaction.execute();
        transaction.outputParcel();
    }
    QCOMPARE(log.lines(), texts({outputRefused}));
}

LUM_TEST_MAIN(TestAlienBinderTransaction)
#include "tst_alienbindertransaction.moc"
