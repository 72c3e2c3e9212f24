// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/userbus.h"

#include "tests/support/ownclock.h"
#include "tests/support/testmain.h"
#include "tests/userbus/userbusworld.h"

#include <csignal>

#include <sys/socket.h>

using namespace std::chrono_literals;
using Outcome = UserBus::Outcome;

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

} // namespace

class TestUserBusCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void callIsOverWhenItIsAnswered();
    void refusalIsAnAnswer();
    void missingProgramIsAnAnswer();
    void programIsGivenTwentyFiveSeconds();
    void absentBusIsToldOfAtOnce_data();
    void absentBusIsToldOfAtOnce();
    void hangingBusIsGivenTenSeconds_data();
    void hangingBusIsGivenTenSeconds();
    void fullBusThatGetsRoomIsReached();
    void lostBusEndsTheCallAndNotTheMessages();
    void goneReceiverIsNotTold();
    void callOvertakesNoMessage();

private:
    void startBus(Recorder::Manner manner);
    void call(const QString &text);

    std::optional<UserBusWorld> m_world;
    QVector<Outcome> m_outcomes;
};

void TestUserBusCalls::init()
{
    m_world.emplace();
    m_outcomes.clear();
}

void TestUserBusCalls::cleanup()
{
    m_world.reset();
}

void TestUserBusCalls::startBus(Recorder::Manner manner)
{
    m_world->daemon.emplace(PrivateBus::Kind::User, 1000);
    m_world->recorder.emplace(manner);
}

void TestUserBusCalls::call(const QString &text)
{
    m_world->bus->call(
        Recorder::note(text), this, [this](Outcome outcome) { m_outcomes += outcome; });
}

void TestUserBusCalls::callIsOverWhenItIsAnswered()
{
    startBus(Recorder::Manner::Waits);
    call(a);
    QTRY_COMPARE(m_world->recorder->texts(), QStringList{a});
    settle();
    QVERIFY(m_outcomes.isEmpty());
    m_world->recorder->answer();
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    settle();
    QVERIFY(!m_world->bus->findChild<QTimer *>()->isActive());
}

void TestUserBusCalls::refusalIsAnAnswer()
{
    startBus(Recorder::Manner::Refuses);
    call(a);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    QCOMPARE(m_world->recorder->texts(), QStringList{a});
}

void TestUserBusCalls::missingProgramIsAnAnswer()
{
    m_world->daemon.emplace(PrivateBus::Kind::User, 1000);
    call(a);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    QCOMPARE(m_world->log.lines(), QStringList());
}

void TestUserBusCalls::programIsGivenTwentyFiveSeconds()
{
    startBus(Recorder::Manner::Waits);
    call(a);
    QTRY_COMPARE(m_world->recorder->texts(), QStringList{a});
    shiftClock(24500ms);
    settle();
    QVERIFY(m_outcomes.isEmpty());
    shiftClock(500ms);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    m_world->recorder->answer(); // too late, and no harm
    m_world->bus->post(Recorder::note(b));
    QTRY_COMPARE(m_world->recorder->texts(), QStringList({a, b}));
    QCOMPARE(m_world->recorder->callers().size(), 1);
    QCOMPARE(m_world->log.lines(), QStringList());
}

void TestUserBusCalls::absentBusIsToldOfAtOnce_data()
{
    QTest::addColumn<bool>("isListening");
    QTest::newRow("no socket") << false;
    QTest::newRow("connection closed at once") << true;
}

void TestUserBusCalls::absentBusIsToldOfAtOnce()
{
    QFETCH(bool, isListening);
    if (isListening)
        m_world->peer.emplace();
    m_world->bus->post(Recorder::note(b));
    for (int count = 1; count <= 3; ++count) {
        call(a);
        QVERIFY(m_outcomes.size() == count - 1); // never before the call returns
        if (isListening)
            ::shutdown(m_world->peer->accept(), SHUT_RDWR);
        QTRY_COMPARE(m_outcomes, QVector<Outcome>(count, Outcome::Over));
    }
    QCOMPARE(m_world->log.lines(), QStringList());
    // What nobody waits for is still kept.
    m_world->peer.reset();
    startBus(Recorder::Manner::Answers);
    shiftClock(1s);
    QTRY_COMPARE(m_world->recorder->texts(), QStringList{b});
}

void TestUserBusCalls::hangingBusIsGivenTenSeconds_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"never answers", "no room", "stopped", "stopped after a call"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void TestUserBusCalls::hangingBusIsGivenTenSeconds()
{
    QFETCH(QString, kind);
    if (kind.startsWith(QLatin1String("stopped"))) {
        startBus(Recorder::Manner::Answers);
        if (kind.endsWith(QLatin1String("call"))) {
            call(b);
            QTRY_COMPARE(m_outcomes.size(), 1);
            m_outcomes.clear();
        }
        m_world->daemon->signal(SIGSTOP);
    } else {
        m_world->peer.emplace(kind == QLatin1String("no room") ? 0 : 16);
        if (kind == QLatin1String("no room"))
            m_world->peer->fill();
    }
    call(a);
    settle();
    shiftClock(9500ms);
    settle();
    QVERIFY(m_outcomes.isEmpty());
    QCOMPARE(m_world->log.lines(), QStringList());
    shiftClock(500ms);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::BusHangs});
    QCOMPARE(m_world->log.lines(), QStringList{UserBusWorld::dropped()});
    QVERIFY(!m_world->bus->findChild<QTimer *>()->isActive());
}

void TestUserBusCalls::fullBusThatGetsRoomIsReached()
{
    m_world->peer.emplace(0);
    m_world->peer->fill();
    call(a);
    settle();
    QVERIFY(m_outcomes.isEmpty());
    m_world->peer.reset();
    startBus(Recorder::Manner::Answers);
    shiftClock(1s);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    QCOMPARE(m_world->recorder->texts(), QStringList{a});
}

void TestUserBusCalls::lostBusEndsTheCallAndNotTheMessages()
{
    startBus(Recorder::Manner::Waits);
    call(a);
    QTRY_COMPARE(m_world->recorder->texts(), QStringList{a});
    m_world->daemon->signal(SIGSTOP);
    m_world->bus->post(Recorder::note(b));
    settle();
    QVERIFY(m_outcomes.isEmpty());
    m_world->recorder.reset();
    m_world->daemon.reset();
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    startBus(Recorder::Manner::Answers);
    shiftClock(1s);
    QTRY_COMPARE(m_world->recorder->texts(), QStringList{b});
    QCOMPARE(m_world->log.lines(), QStringList());
}

void TestUserBusCalls::goneReceiverIsNotTold()
{
    startBus(Recorder::Manner::Waits);
    auto receiver = std::make_unique<QObject>();
    m_world->bus->call(
        Recorder::note(a), receiver.get(), [this](Outcome outcome) { m_outcomes += outcome; });
    QTRY_COMPARE(m_world->recorder->texts(), QStringList{a});
    receiver.reset();
    m_world->recorder->answer();
    call(b);
    QTRY_COMPARE(m_world->recorder->texts(), QStringList({a, b}));
    m_world->recorder->answer();
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
}

void TestUserBusCalls::callOvertakesNoMessage()
{
    startBus(Recorder::Manner::Answers);
    m_world->bus->post(Recorder::note(a));
    call(b);
    m_world->bus->post(Recorder::note(a));
    QTRY_COMPARE(m_world->recorder->texts(), QStringList({a, b, a}));
}

LUM_TEST_MAIN(TestUserBusCalls)
#include "tst_userbuscalls.moc"
