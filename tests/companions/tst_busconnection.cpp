// SPDX-License-Identifier: BSD-3-Clause
#include "client/busconnection.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QEventLoop>

using namespace std::chrono_literals;

namespace {

constexpr char service[] = "com.tovra.peer";
constexpr char object[] = "/peer";
constexpr BusMethod echo = {service, object, service, "echo"};
constexpr BusMethod keepWaiting = {service, object, service, "keepWaiting"};
constexpr BusMethod busId = {
    "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"};
constexpr auto longTime = 20s;

/// What became of a call.
struct Outcome
{
    int answers = 0;
    ClientError::Kind kind = ClientError::Kind::None;
    QString text;

    BusConnection::Reply reply()
    {
        return [this](sd_bus_message *message, const ClientError &error) {
            ++answers;
            kind = error.kind;
            const char *value = nullptr;
            if (message != nullptr && sd_bus_message_read(message, "s", &value) > 0)
                text = QString::fromUtf8(value);
        };
    }
};

int appendWord(sd_bus_message *message)
{
    return sd_bus_message_append(message, "s", "word");
}

void sendSignal(const char *name)
{
    QDBusConnection::systemBus().send(QDBusMessage::createSignal(
        QLatin1String(object), QLatin1String(service), QLatin1String(name)));
}

} // namespace

/// The program at the other end.
class Peer : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tovra.peer")

public:
    Peer()
    {
        QDBusConnection bus = QDBusConnection::systemBus();
        if (!bus.registerService(QLatin1String(service))
            || !bus.registerObject(QLatin1String(object), this, QDBusConnection::ExportAllSlots))
            qFatal("the peer does not come onto the bus");
    }

    bool isWaitedFor() const { return m_question.type() == QDBusMessage::MethodCallMessage; }
    void answer() const
    {
        QDBusConnection::systemBus().send(m_question.createReply(QStringLiteral("late")));
    }

public Q_SLOTS:
    QString echo(const QString &text) { return text; }
    QString keepWaiting()
    {
        setDelayedReply(true);
        m_question = message();
        return {};
    }

private:
    QDBusMessage m_question;
};

class TestBusConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callIsAnswered();
    void errorsAreToldApart();
    void withoutABusTheErrorComesFromTheEventLoop();
    void callThatCannotBeMadeIsAnError();
    void lateAnswerIsDropped();
    void nothingComesAfterTheEndOfTheObject();
    void callbackMayEndTheObject();
    void callbackMayRunAnEventLoop();
    void signalsThatFitAreSeen();
    void lossOfTheBusAnswersAllCallsFirst();
    void nextBusIsUsedAfterALoss();
};

void TestBusConnection::callIsAnswered()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    BusConnection connection;
    Outcome outcome;
    connection.call(echo, appendWord, longTime, outcome.reply());
    QCOMPARE(outcome.answers, 0);
    QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 1, 10000);
    QCOMPARE(outcome.kind, ClientError::Kind::None);
    QCOMPARE(outcome.text, QStringLiteral("word"));
}

void TestBusConnection::errorsAreToldApart()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    const struct
    {
        BusMethod method;
        ClientError::Kind kind;
    } rows[] = {
        {{"com.tovra.nobody", object, service, "echo"}, ClientError::Kind::NoDaemon},
        {{service, "/none", service, "echo"}, ClientError::Kind::TooOld},
        {{service, object, "com.tovra.none", "echo"}, ClientError::Kind::TooOld},
        {{service, object, service, "dance"}, ClientError::Kind::TooOld},
        {{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "AddMatch"},
            ClientError::Kind::Failed},
    };
    BusConnection connection;
    for (const auto &row : rows) {
        Outcome outcome;
        connection.call(row.method, appendWord, longTime, outcome.reply());
        QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 1, 10000);
        QCOMPARE(outcome.kind, row.kind);
        QCOMPARE(outcome.text, QString());
    }
}

void TestBusConnection::withoutABusTheErrorComesFromTheEventLoop()
{
    BusConnection connection;
    QVERIFY(!connection.open());
    Outcome outcome;
    connection.call(busId, {}, longTime, outcome.reply());
    connection.watch("type='signal'", [](sd_bus_message *) { });
    QCOMPARE(outcome.answers, 0);
    QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 1, 5000);
    QCOMPARE(outcome.kind, ClientError::Kind::NoDaemon);
}

void TestBusConnection::callThatCannotBeMadeIsAnError()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    BusConnection connection;
    Outcome outcome;
    connection.call(busId, [](sd_bus_message *) { return -EINVAL; }, longTime, outcome.reply());
    QCOMPARE(outcome.answers, 0);
    QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 1, 5000);
    QVERIFY(outcome.kind != ClientError::Kind::None);
    connection.call(busId, {}, longTime, outcome.reply());
    QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 2, 10000);
    QCOMPARE(outcome.kind, ClientError::Kind::None);
}

void TestBusConnection::lateAnswerIsDropped()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    BusConnection connection;
    Outcome outcome;
    QElapsedTimer elapsed;
    elapsed.start();
    connection.call(keepWaiting, {}, 2s, outcome.reply());
    QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 1, 15000);
    QVERIFY(elapsed.elapsed() >= 2000);
    QCOMPARE(outcome.kind, ClientError::Kind::TimedOut);
    QTRY_VERIFY_WITH_TIMEOUT(peer.isWaitedFor(), 10000);
    peer.answer();
    Outcome next;
    connection.call(echo, appendWord, longTime, next.reply());
    QTRY_COMPARE_WITH_TIMEOUT(next.answers, 1, 10000);
    QCOMPARE(next.text, QStringLiteral("word"));
    QCOMPARE(outcome.answers, 1);
}

void TestBusConnection::nothingComesAfterTheEndOfTheObject()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    auto connection = std::make_unique<BusConnection>();
    Outcome outcome;
    connection->call(keepWaiting, {}, 2s, outcome.reply());
    QTRY_VERIFY_WITH_TIMEOUT(peer.isWaitedFor(), 10000);
    connection.reset();
    peer.answer();
    const int before = outcome.answers;
    // Its time limit ends before this one's.
    BusConnection other;
    Outcome next;
    other.call(keepWaiting, {}, 2s, next.reply());
    QTRY_COMPARE_WITH_TIMEOUT(next.answers, 1, 15000);
    QCOMPARE(outcome.answers, before);
}

void TestBusConnection::callbackMayEndTheObject()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    auto connection = std::make_unique<BusConnection>();
    Outcome other;
    bool hasEnded = false;
    connection->call(
        echo, appendWord, longTime, [&connection, &hasEnded](sd_bus_message *, const auto &) {
            connection.reset();
            hasEnded = true;
        });
    connection->call(keepWaiting, {}, longTime, other.reply());
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded, 10000);
    QCOMPARE(other.answers, 0);
}

void TestBusConnection::callbackMayRunAnEventLoop()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    BusConnection connection;
    int seen = 0;
    bool hasReturned = false;
    connection.watch("type='signal',sender='com.tovra.peer',member='Happened'",
        [&seen](sd_bus_message *) { ++seen; });
    connection.call(
        echo, appendWord, longTime, [&hasReturned](sd_bus_message *, const ClientError &) {
            // What comes meanwhile waits.
            sendSignal("Happened");
            QEventLoop loop;
            QTimer::singleShot(500ms, &loop, &QEventLoop::quit);
            loop.exec();
            hasReturned = true;
        });
    QTRY_VERIFY_WITH_TIMEOUT(hasReturned, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(seen, 1, 10000);
}

void TestBusConnection::signalsThatFitAreSeen()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    BusConnection connection;
    int seen = 0;
    Outcome outcome;
    connection.watch("type='signal',sender='com.tovra.peer',member='Happened'",
        [&seen](sd_bus_message *) { ++seen; });
    connection.call(echo, appendWord, longTime, outcome.reply());
    QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 1, 10000);
    sendSignal("Happened");
    sendSignal("Other");
    sendSignal("Happened");
    QTRY_COMPARE_WITH_TIMEOUT(seen, 2, 10000);
    connection.call(echo, appendWord, longTime, outcome.reply());
    QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 2, 10000);
    QCOMPARE(seen, 2);
}

void TestBusConnection::lossOfTheBusAnswersAllCallsFirst()
{
    PrivateBus bus(PrivateBus::Kind::System);
    const Peer peer;
    BusConnection connection;
    Outcome first;
    Outcome second;
    int answersAtLoss = -1;
    int losses = 0;
    QObject::connect(&connection, &BusConnection::lost, [&] {
        ++losses;
        answersAtLoss = first.answers + second.answers;
    });
    connection.call(keepWaiting, {}, longTime, first.reply());
    connection.call(keepWaiting, {}, longTime, second.reply());
    QTRY_VERIFY_WITH_TIMEOUT(peer.isWaitedFor(), 10000);
    bus.stop();
    QTRY_COMPARE_WITH_TIMEOUT(losses, 1, 10000);
    QCOMPARE(answersAtLoss, 2);
    QCOMPARE(first.kind, ClientError::Kind::NoDaemon);
    QCOMPARE(second.kind, ClientError::Kind::NoDaemon);
}

void TestBusConnection::nextBusIsUsedAfterALoss()
{
    BusConnection connection;
    QString ids[2];
    for (QString &id : ids) {
        PrivateBus bus(PrivateBus::Kind::System);
        bool isLost = false;
        const auto watched =
            QObject::connect(&connection, &BusConnection::lost, [&isLost] { isLost = true; });
        Outcome outcome;
        connection.call(busId, {}, longTime, outcome.reply());
        QTRY_COMPARE_WITH_TIMEOUT(outcome.answers, 1, 10000);
        id = outcome.text;
        bus.stop();
        QTRY_VERIFY_WITH_TIMEOUT(isLost, 10000);
        QObject::disconnect(watched);
    }
    QVERIFY(!ids[0].isEmpty());
    QVERIFY(!ids[1].isEmpty());
    QVERIFY(ids[0] != ids[1]);
}

LUM_TEST_MAIN(TestBusConnection)
#include "tst_busconnection.moc"
