// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <deque>
#include <functional>
#include <list>
#include <memory>

#include <systemd/sd-bus.h>

/// A method call to a program on the user's bus. The names are literals.
struct UserBusCall
{
    const char *service;
    const char *path;
    const char *interface;
    const char *method;
    /// Appends the arguments; negative, an errno, when it cannot. May run more than once.
    std::function<int(sd_bus_message *)> arguments;
};

/// The user's own bus, at the address that DBUS_SESSION_BUS_ADDRESS holds when a connection is
/// made. It may be absent, stopped, full or hostile: nothing here ever blocks.
///
/// A connection is made for the first call, kept, and made anew for the next call when it has
/// been lost. Before each call or burst of calls the bus has to answer a question, so that
/// nothing lies in the socket of a bus that has stopped, to come out when it goes on. On the
/// main thread, with an event loop.
class UserBus : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        Over, ///< answered, refused, not answered in time, or there is no bus to ask
        BusHangs, ///< there is a bus that does nothing; a warning has said so
    };
    using Done = std::function<void(Outcome)>;

    explicit UserBus(QObject *parent = nullptr);
    /// Drops what waits, without a word.
    ~UserBus() override;

    /// The one connection of the process; never deleted.
    static UserBus &instance();

    /// Sends a call whose answer nobody wants. It is kept for 10 seconds while there is no bus
    /// that takes it, and then dropped with a warning. Order is kept.
    void post(const UserBusCall &call);

    /// Sends a call and tells the outcome, later, from the event loop of @p receiver, while that
    /// lives. Without a bus that is at once; a bus that hangs is given 10 seconds, and the
    /// called program 25 seconds more.
    void call(const UserBusCall &call, QObject *receiver, const Done &done);

private:
    using Clock = std::chrono::steady_clock;
    struct Closer
    {
        void operator()(sd_bus *bus) const;
        void operator()(sd_bus_slot *slot) const;
    };
    using Bus = std::unique_ptr<sd_bus, Closer>;
    using Slot = std::unique_ptr<sd_bus_slot, Closer>;

    /// What the outcome of a call goes to; nobody for one that was posted.
    struct Caller
    {
        QPointer<QObject> receiver;
        Done done;
    };
    struct Waiting
    {
        UserBusCall call;
        Caller caller;
        Clock::time_point deadline;
    };
    struct Sent
    {
        Slot slot;
        Caller caller;
        Clock::time_point deadline;
    };
    /// Whether the connection has an open question, the first being whether it comes about.
    enum class Question { Open, Answered };

    static int onAnswer(sd_bus_message *answer, void *self, sd_bus_error *error) noexcept;
    static int onReply(sd_bus_message *reply, void *self, sd_bus_error *error) noexcept;
    static void tell(const Caller &caller, Outcome outcome);

    void add(const UserBusCall &call, const Caller &caller);
    void onActivity();
    void advance();
    void connectToBus();
    void ask();
    void sendWaiting();
    int send(const Waiting &waiting);
    void dropOverdue();
    void endCallsThatWait();
    void closeBus();
    void watch();
    void watchSocket();

    std::deque<Waiting> m_waiting;
    Bus m_bus;
    Slot m_questionSlot;
    std::list<Sent> m_sent;
    Question m_question = Question::Answered;
    Clock::time_point m_answerDeadline;
    Clock::time_point m_nextAttempt;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
    QTimer m_timer;
};
