// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/userbus.h"

#include "tests/support/logcapture.h"
#include "tests/support/ownclock.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"
#include "tests/userbus/rawpeer.h"
#include "tests/userbus/recorder.h"

#include <csignal>
#include <optional>

#include <sys/socket.h>

using namespace std::chrono_literals;
using Outcome = UserBus::Outcome;

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString dropped = QStringLiteral("warning com.tovra.lumd.daemon User's bus not reached in "
                                       "10 s, dropping message: test.Recorder.Note");

/// Has the event loop turn until nothing is left to do at once.
void settle()
{
    bool isDone = false;
    QTimer::singleShot(50, [&isDone] { isDone = true; });
    QTRY_VERIFY(isDone);
}

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

    std::optional<LogCapture> m_log;
    std::optional<PrivateBus> m_daemon;
    std::optional<Recorder> m_recorder;
    std::optional<RawPeer> m_peer;
    std::optional<UserBus> m_bus;
    QVector<Outcome> m_outcomes;
};

void TestUserBusCalls::init()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", RawPeer::address());
    m_log.emplace();
    m_bus.emplace();
    m_outcomes.clear();
}

void TestUserBusCalls::cleanup()
{
    m_bus.reset();
    m_recorder.reset();
    m_daemon.reset();
    m_peer.reset();
    m_log.reset();
}

void TestUserBusCalls::startBus(Recorder::Manner manner)
{
    m_daemon.emplace(PrivateBus::Kind::User, 1000);
    m_recorder.emplace(manner);
}

void TestUserBusCalls::call(const QString &text)
{
    m_bus->call(Recorder::note(text), this, [this](Outcome outcome) { m_outcomes += outcome; });
}

void TestUserBusCalls::callIsOverWhenItIsAnswered()
{
    startBus(Recorder::Manner::Waits);
    call(a);
    QTRY_COMPARE(m_recorder->texts(), QStringList{a});
    settle();
    QVERIFY(m_outcomes.isEmpty());
    m_recorder->answer();
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    settle();
    QVERIFY(!m_bus->findChild<QTimer *>()->isActive());
}

void TestUserBusCalls::refusalIsAnAnswer()
{
    startBus(Recorder::Manner::Refuses);
    call(a);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    QCOMPARE(m_recorder->texts(), QStringList{a});
}

void TestUserBusCalls::missingProgramIsAnAnswer()
{
    m_daemon.emplace(PrivateBus::Kind::User, 1000);
    call(a);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    QCOMPARE(m_log->lines(), QStringList());
}

void TestUserBusCalls::programIsGivenTwentyFiveSeconds()
{
    startBus(Recorder::Manner::Waits);
    call(a);
    QTRY_COMPARE(m_recorder->texts(), QStringList{a});
    shiftClock(24500ms);
    settle();
    QVERIFY(m_outcomes.isEmpty());
    shiftClock(500ms);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    m_recorder->answer(); // too late, and no harm
    m_bus->post(Recorder::note(b));
    QTRY_COMPARE(m_recorder->texts(), QStringList({a, b}));
    QCOMPARE(m_recorder->callers().size(), 1);
    QCOMPARE(m_log->lines(), QStringList());
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
        m_peer.emplace();
    m_bus->post(Recorder::note(b));
    for (int count = 1; count <= 3; ++count) {
        call(a);
        QVERIFY(m_outcomes.size() == count - 1); // never before the call returns
        if (isListening)
            ::shutdown(m_peer->accept(), SHUT_RDWR);
        QTRY_COMPARE(m_outcomes, QVector<Outcome>(count, Outcome::Over));
    }
    QCOMPARE(m_log->lines(), QStringList());
    // What nobody waits for is still kept.
    m_peer.reset();
    startBus(Recorder::Manner::Answers);
    shiftClock(1s);
    QTRY_COMPARE(m_recorder->texts(), QStringList{b});
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
        m_daemon->signal(SIGSTOP);
    } else {
        m_peer.emplace(kind == QLatin1String("no room") ? 0 : 16);
        if (kind == QLatin1String("no room"))
            m_peer->fill();
    }
    call(a);
    settle();
    shiftClock(9500ms);
    settle();
    QVERIFY(m_outcomes.isEmpty());
    QCOMPARE(m_log->lines(), QStringList());
    shiftClock(500ms);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::BusHangs});
    QCOMPARE(m_log->lines(), QStringList{dropped});
    QVERIFY(!m_bus->findChild<QTimer *>()->isActive());
}

void TestUserBusCalls::fullBusThatGetsRoomIsReached()
{
    m_peer.emplace(0);
    m_peer->fill();
    call(a);
    settle();
    QVERIFY(m_outcomes.isEmpty());
    m_peer.reset();
    startBus(Recorder::Manner::Answers);
    shiftClock(1s);
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    QCOMPARE(m_recorder->texts(), QStringList{a});
}

void TestUserBusCalls::lostBusEndsTheCallAndNotTheMessages()
{
    startBus(Recorder::Manner::Waits);
    call(a);
    QTRY_COMPARE(m_recorder->texts(), QStringList{a});
    m_daemon->signal(SIGSTOP);
    m_bus->post(Recorder::note(b));
    settle();
    QVERIFY(m_outcomes.isEmpty());
    m_recorder.reset();
    m_daemon.reset();
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
    startBus(Recorder::Manner::Answers);
    shiftClock(1s);
    QTRY_COMPARE(m_recorder->texts(), QStringList{b});
    QCOMPARE(m_log->lines(), QStringList());
}

void TestUserBusCalls::goneReceiverIsNotTold()
{
    startBus(Recorder::Manner::Waits);
    auto receiver = std::make_unique<QObject>();
    m_bus->call(
        Recorder::note(a), receiver.get(), [this](Outcome outcome) { m_outcomes += outcome; });
    QTRY_COMPARE(m_recorder->texts(), QStringList{a});
    receiver.reset();
    m_recorder->answer();
    call(b);
    QTRY_COMPARE(m_recorder->texts(), QStringList({a, b}));
    m_recorder->answer();
    QTRY_COMPARE(m_outcomes, QVector<Outcome>{Outcome::Over});
}

void TestUserBusCalls::callOvertakesNoMessage()
{
    startBus(Recorder::Manner::Answers);
    m_bus->post(Recorder::note(a));
    call(b);
    m_bus->post(Recorder::note(a));
    QTRY_COMPARE(m_recorder->texts(), QStringList({a, b, a}));
}

LUM_TEST_MAIN(TestUserBusCalls)
#include "tst_userbuscalls.moc"
