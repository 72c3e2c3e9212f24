// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/busstrings.h"

#include "tests/support/ownclock.h"
#include "tests/support/testmain.h"
#include "tests/userbus/userbusworld.h"

#include <dirent.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const QString a = QStringLiteral("a");

} // namespace

/// What the user may put in the place of his bus.
class TestUserBusPeers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void noDescriptorsAreNegotiated();
    void hangingAttemptIsClosedWhenNothingWaits();
    void hangingAttemptIsBegunAnewAfterTenSeconds();
    void connectionThatIsUpIsKept();
    void closedConnectionIsNotMadeAnewWithinASecond();
    void peerThatReadsNothingHoldsNobody();
    void peerThatNeverEndsHoldsNobody();
    void nobodyIsAnswered();
    void nonsenseEndsTheConnection_data();
    void nonsenseEndsTheConnection();

private:
    /// Has a message delivered, so that a connection is up; gives it.
    int join();

    std::optional<UserBusWorld> m_world;
};

void TestUserBusPeers::init()
{
    m_world.emplace();
    m_world->peer.emplace();
}

void TestUserBusPeers::cleanup()
{
    m_world.reset();
}

int TestUserBusPeers::join()
{
    m_world->bus->post(Recorder::note(a));
    const int connection = m_world->peer->accept();
    m_world->peer->welcome(connection);
    QByteArray heard;
    const auto isDelivered = [&heard, connection] {
        heard += RawPeer::read(connection);
        return heard.contains("Note");
    };
    return QTest::qWaitFor(isDelivered) ? connection : -1;
}

void TestUserBusPeers::noDescriptorsAreNegotiated()
{
    m_world->bus->post(Recorder::note(a));
    const int connection = m_world->peer->accept();
    QByteArray heard;
    QTRY_VERIFY((heard += RawPeer::read(connection)).contains("BEGIN"));
    QVERIFY2(heard.startsWith(QByteArray("\0AUTH EXTERNAL", 14)), heard.constData() + 1);
    QVERIFY(!heard.contains("NEGOTIATE"));
}

void TestUserBusPeers::hangingAttemptIsClosedWhenNothingWaits()
{
    m_world->bus->post(Recorder::note(a));
    const int first = m_world->peer->accept();
    settle();
    shiftClock(8s);
    m_world->bus->post(Recorder::note(a));
    settle();
    QVERIFY(!RawPeer::hasEnded(first));
    shiftClock(2s);
    QTRY_VERIFY(RawPeer::hasEnded(first));
    const int second = m_world->peer->waitForConnection();
    QVERIFY(second >= 0);
    // It has two seconds left when the last message is dropped.
    shiftClock(8s);
    settle();
    QVERIFY(RawPeer::hasEnded(second));
    QCOMPARE(m_world->log.lines(), QStringList({UserBusWorld::dropped(), UserBusWorld::dropped()}));
    QCOMPARE(m_world->peer->acceptAll(), 2);
}

void TestUserBusPeers::hangingAttemptIsBegunAnewAfterTenSeconds()
{
    m_world->bus->post(Recorder::note(a));
    const int connection = m_world->peer->accept();
    settle();
    shiftClock(9s);
    m_world->bus->post(Recorder::note(a));
    settle();
    shiftClock(1s);
    QTRY_VERIFY(RawPeer::hasEnded(connection));
    const int next = m_world->peer->waitForConnection();
    QVERIFY(next >= 0);
    m_world->peer->welcome(next);
    QByteArray heard;
    QTRY_VERIFY((heard += RawPeer::read(next)).contains("Note"));
    QCOMPARE(m_world->log.lines(), QStringList{UserBusWorld::dropped()});
}

void TestUserBusPeers::connectionThatIsUpIsKept()
{
    const int connection = join();
    QVERIFY(connection >= 0);
    shiftClock(60s);
    settle();
    QVERIFY(!RawPeer::hasEnded(connection));
    QVERIFY(!m_world->bus->findChild<QTimer *>()->isActive());
    // The question of the next message is not answered: the message is not sent.
    m_world->bus->post(Recorder::note(a));
    QByteArray heard;
    QTRY_VERIFY((heard += RawPeer::read(connection)).contains("GetId"));
    shiftClock(10s);
    QTRY_VERIFY(RawPeer::hasEnded(connection));
    heard += RawPeer::read(connection);
    QVERIFY(!heard.contains("Note"));
    QCOMPARE(m_world->log.lines(), QStringList{UserBusWorld::dropped()});
}

void TestUserBusPeers::closedConnectionIsNotMadeAnewWithinASecond()
{
    m_world->bus->post(Recorder::note(a));
    ::shutdown(m_world->peer->accept(), SHUT_RDWR);
    settle();
    QCOMPARE(m_world->peer->acceptAll(), 1);
    for (int attempts = 2; attempts <= 6; ++attempts) {
        shiftClock(1s);
        const int connection = m_world->peer->waitForConnection();
        QVERIFY(connection >= 0);
        ::shutdown(connection, SHUT_RDWR);
        settle();
    }
    QCOMPARE(m_world->peer->acceptAll(), 6);
}

void TestUserBusPeers::peerThatReadsNothingHoldsNobody()
{
    const int connection = join();
    QVERIFY(connection >= 0);
    m_world->bus->post(Recorder::note(QString(4000000, QLatin1Char('a'))));
    QByteArray heard;
    QTRY_VERIFY((heard += RawPeer::read(connection)).contains("GetId"));
    QVERIFY(RawPeer::write(connection, RawPeer::answer(2, 3, "id")) > 0);
    settle();
    // The rest of the great one is in the way of the question.
    m_world->bus->post(Recorder::note(a));
    settle();
    QVERIFY(!RawPeer::hasEnded(connection));
    shiftClock(10s);
    QTRY_VERIFY(RawPeer::hasEnded(connection));
    QCOMPARE(m_world->log.lines(), QStringList{UserBusWorld::dropped()});
}

void TestUserBusPeers::peerThatNeverEndsHoldsNobody()
{
    const int connection = join();
    QVERIFY(connection >= 0);
    QByteArray flood;
    for (quint32 serial = 2; serial < 502; ++serial)
        flood += RawPeer::answer(serial, serial, "unasked");
    QVERIFY(RawPeer::write(connection, flood) > 0);
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&turns] { ++turns; });
    timer.start(0);
    // The other events have their turn between any two of the messages.
    int left = 0;
    QTRY_VERIFY(::recv(connection, &left, 1, MSG_PEEK) != 0 && turns >= 400);
    QVERIFY(!RawPeer::hasEnded(connection));
}

void TestUserBusPeers::nobodyIsAnswered()
{
    const int connection = join();
    QVERIFY(connection >= 0);
    QVERIFY(RawPeer::write(connection, RawPeer::ping(2)) > 0);
    settle();
    QCOMPARE(RawPeer::read(connection), QByteArray());
    m_world->bus->post(Recorder::note(a));
    QByteArray heard;
    QTRY_VERIFY((heard += RawPeer::read(connection)).contains("GetId"));
    QVERIFY(!RawPeer::hasEnded(connection));
}

void TestUserBusPeers::nonsenseEndsTheConnection_data()
{
    QTest::addColumn<bool>("isUp");
    QTest::newRow("before it is up") << false;
    QTest::newRow("after it is up") << true;
}

void TestUserBusPeers::nonsenseEndsTheConnection()
{
    QFETCH(bool, isUp);
    int connection = -1;
    if (isUp) {
        connection = join();
    } else {
        m_world->bus->post(Recorder::note(a));
        connection = m_world->peer->accept();
    }
    QVERIFY(RawPeer::write(connection, QByteArray(200, 'x') + "\r\n\r\n\r\n") > 0);
    QTRY_VERIFY(RawPeer::hasEnded(connection));
}

LUM_TEST_MAIN(TestUserBusPeers)
#include "tst_userbuspeers.moc"
