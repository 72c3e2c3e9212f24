// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/userbus.h"

#include "tests/support/ownclock.h"
#include "tests/support/testmain.h"
#include "tests/userbus/userbusworld.h"

#include <cerrno>
#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString c = QStringLiteral("c");

/// Why nothing is delivered, and how that ends.
class Hindrance
{
public:
    enum Kind { Absent, NoSocket, StoppedBefore, StoppedAfter, NeverAnswers, Full };

    explicit Hindrance(Kind kind);
    /// What UserBus has to do with it before it is in the way.
    void prepare(UserBus &bus);
    /// The bus is there, with a recorder.
    void end();

    std::optional<PrivateBus> bus;
    std::optional<RawPeer> peer;
    std::optional<Recorder> recorder;

private:
    Kind m_kind;
};

Hindrance::Hindrance(Kind kind) : m_kind(kind)
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", RawPeer::address());
    if (kind == StoppedBefore || kind == StoppedAfter) {
        bus.emplace(PrivateBus::Kind::User, 1000);
        recorder.emplace();
    } else if (kind == NeverAnswers || kind == Full) {
        peer.emplace(kind == Full ? 0 : 16);
        if (kind == Full)
            peer->fill();
    } else if (kind == NoSocket) {
        bus.emplace(PrivateBus::Kind::User, 1000);
        bus->stop(); // its socket stays, and nobody listens
    }
}

void Hindrance::prepare(UserBus &userBus)
{
    if (m_kind == StoppedAfter) {
        userBus.post(Recorder::note(QStringLiteral("before")));
        QTRY_COMPARE(recorder->texts().size(), 1);
    }
    if (bus && recorder)
        bus->signal(SIGSTOP);
}

void Hindrance::end()
{
    if (recorder) {
        bus->signal(SIGCONT);
        return;
    }
    peer.reset();
    bus.emplace(PrivateBus::Kind::User, 1000);
    recorder.emplace();
}

} // namespace

Q_DECLARE_METATYPE(Hindrance::Kind)

class TestUserBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messagesArriveInOrderOnOneConnection();
    void nothingIsDoneBeforeTheFirstMessage();
    void hinderedMessageIsDroppedAfterTenSeconds_data() { addHindrances(); }
    void hinderedMessageIsDroppedAfterTenSeconds();
    void youngMessagesArriveOnceTheBusIsThere_data() { addHindrances(); }
    void youngMessagesArriveOnceTheBusIsThere();
    void nextMessageArrivesAfterALostOne_data() { addHindrances(); }
    void nextMessageArrivesAfterALostOne();
    void restartedBusGetsTheNextMessage();
    void missingServerIsNoReasonToWait();
    void addressIsReadAtEachAttempt();
    void messageThatCannotBeMadeIsDroppedAtOnce();
    void forkedChildLeavesTheConnectionAlone();

private:
    static void addHindrances();
};

void TestUserBus::addHindrances()
{
    QTest::addColumn<Hindrance::Kind>("kind");
    QTest::newRow("absent") << Hindrance::Absent;
    QTest::newRow("nobody listens") << Hindrance::NoSocket;
    QTest::newRow("stopped before it is joined") << Hindrance::StoppedBefore;
    QTest::newRow("stopped after it was joined") << Hindrance::StoppedAfter;
    QTest::newRow("accepts and never answers") << Hindrance::NeverAnswers;
    QTest::newRow("no room for connections") << Hindrance::Full;
}

void TestUserBus::messagesArriveInOrderOnOneConnection()
{
    Hindrance world(Hindrance::Absent);
    world.end();
    UserBus bus;
    bus.post(Recorder::note(a));
    bus.post(Recorder::note(b));
    QTRY_COMPARE(world.recorder->texts(), QStringList({a, b}));
    bus.post(Recorder::note(c));
    QTRY_COMPARE(world.recorder->texts(), QStringList({a, b, c}));
    QCOMPARE(world.recorder->callers().size(), 1);
    settle();
    QVERIFY(!bus.findChild<QTimer *>()->isActive());
}

void TestUserBus::nothingIsDoneBeforeTheFirstMessage()
{
    RawPeer peer;
    UserBus bus;
    settle();
    QCOMPARE(peer.acceptAll(), 0);
    QVERIFY(!bus.findChild<QTimer *>()->isActive());
}

void TestUserBus::hinderedMessageIsDroppedAfterTenSeconds()
{
    QFETCH(Hindrance::Kind, kind);
    Hindrance world(kind);
    const LogCapture log;
    UserBus bus;
    world.prepare(bus);
    bus.post(Recorder::note(a));
    settle();
    shiftClock(9500ms);
    settle();
    QCOMPARE(log.lines(), QStringList());
    shiftClock(500ms);
    QTRY_COMPARE(log.lines(), QStringList{UserBusWorld::dropped()});
    // Nothing waits, so nothing is tried.
    QVERIFY(!bus.findChild<QTimer *>()->isActive());
    shiftClock(20s);
    settle();
    QCOMPARE(log.lines(), QStringList{UserBusWorld::dropped()});
}

void TestUserBus::youngMessagesArriveOnceTheBusIsThere()
{
    QFETCH(Hindrance::Kind, kind);
    Hindrance world(kind);
    const LogCapture log;
    UserBus bus;
    world.prepare(bus);
    bus.post(Recorder::note(a));
    settle();
    shiftClock(5s);
    bus.post(Recorder::note(b));
    bus.post(Recorder::note(c));
    settle();
    shiftClock(5s);
    QTRY_COMPARE(log.lines(), QStringList{UserBusWorld::dropped()});
    world.end();
    shiftClock(1s);
    QTRY_COMPARE(
        world.recorder->texts().mid(kind == Hindrance::StoppedAfter ? 1 : 0), QStringList({b, c}));
    QCOMPARE(log.lines(), QStringList{UserBusWorld::dropped()});
}

void TestUserBus::nextMessageArrivesAfterALostOne()
{
    QFETCH(Hindrance::Kind, kind);
    Hindrance world(kind);
    const LogCapture log;
    UserBus bus;
    world.prepare(bus);
    bus.post(Recorder::note(a));
    settle();
    shiftClock(10s);
    QTRY_COMPARE(log.lines(), QStringList{UserBusWorld::dropped()});
    world.end();
    bus.post(Recorder::note(b));
    QTRY_COMPARE(
        world.recorder->texts().mid(kind == Hindrance::StoppedAfter ? 1 : 0), QStringList{b});
}

void TestUserBus::restartedBusGetsTheNextMessage()
{
    const LogCapture log;
    Hindrance world(Hindrance::Absent);
    world.end();
    UserBus bus;
    for (const QString &text : {a, b, c}) {
        bus.post(Recorder::note(text));
        QTRY_COMPARE(world.recorder->texts(), QStringList{text});
        world.recorder.reset();
        world.bus.reset();
        world.end();
    }
    QCOMPARE(log.lines(), QStringList());
}

void TestUserBus::missingServerIsNoReasonToWait()
{
    const LogCapture log;
    Hindrance world(Hindrance::Absent);
    world.bus.emplace(PrivateBus::Kind::User, 1000);
    UserBus bus;
    bus.post(Recorder::note(a));
    bool isThrough = false;
    bus.call(Recorder::note(b), this, [&isThrough](UserBus::Outcome) { isThrough = true; });
    QTRY_VERIFY(isThrough);
    world.recorder.emplace();
    shiftClock(20s);
    bus.post(Recorder::note(c));
    QTRY_COMPARE(world.recorder->texts(), QStringList{c});
    QCOMPARE(log.lines(), QStringList());
}

void TestUserBus::addressIsReadAtEachAttempt()
{
    Hindrance world(Hindrance::Absent);
    world.end();
    UserBus bus;
    for (const char *address : {"", "nonsense", "unix:path=/run/none"}) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        bus.post(Recorder::note(a));
        settle();
        shiftClock(1s);
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", RawPeer::address());
    QTRY_COMPARE(world.recorder->texts(), QStringList({a, a, a}));
}

void TestUserBus::messageThatCannotBeMadeIsDroppedAtOnce()
{
    const LogCapture log;
    Hindrance world(Hindrance::Absent);
    world.end();
    UserBus bus;
    UserBusCall broken = Recorder::note(a);
    broken.arguments = [](sd_bus_message *) { return -EINVAL; };
    bus.post(broken);
    bus.post(Recorder::note(b));
    QTRY_COMPARE(world.recorder->texts(), QStringList{b});
    QCOMPARE(log.lines(),
        QStringList{QStringLiteral("warning com.tovra.lumd.daemon Cannot make message for the "
                                   "user's bus: test.Recorder.Note")});
}

void TestUserBus::forkedChildLeavesTheConnectionAlone()
{
    Hindrance world(Hindrance::Absent);
    world.end();
    UserBus bus;
    bus.post(Recorder::note(a));
    QTRY_COMPARE(world.recorder->texts(), QStringList{a});
    const pid_t child = fork();
    if (child == 0) {
        bus.post(Recorder::note(b));
        _exit(0);
    }
    QCOMPARE(waitpid(child, nullptr, 0), child);
    bus.post(Recorder::note(c));
    QTRY_COMPARE(world.recorder->texts(), QStringList({a, c}));
    QCOMPARE(world.recorder->callers().size(), 1);
}

LUM_TEST_MAIN(TestUserBus)
#include "tst_userbus.moc"
