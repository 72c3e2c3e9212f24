// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/userbus.h"

#include "userbus/logging.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>

using namespace std::chrono_literals;

namespace {

constexpr auto patience = 10s;
constexpr auto replyPatience = 25s;
constexpr auto retryInterval = 1s;
// The deadlines are kept here.
constexpr uint64_t noTimeout = UINT64_MAX;

// Whoever calls this process gets no answer: what a peer asks for and never reads would pile up.
int passOver(sd_bus_message *, void *, sd_bus_error *) noexcept
{
    constexpr int isDealtWith = 1;
    return isDealtWith;
}

QByteArray nameOf(const UserBusCall &call)
{
    return QByteArray(call.interface) + '.' + call.method;
}

} // namespace

void UserBus::Closer::operator()(sd_bus *bus) const
{
    sd_bus_close_unref(bus);
}

void UserBus::Closer::operator()(sd_bus_slot *slot) const
{
    sd_bus_slot_unref(slot);
}

UserBus::UserBus(QObject *parent) : QObject(parent), m_timer(this)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &UserBus::onActivity);
}

UserBus::~UserBus() = default;

UserBus &UserBus::instance()
{
    static auto *const bus = new UserBus;
    return *bus;
}

void UserBus::post(const UserBusCall &call)
{
    add(call, {});
}

void UserBus::call(const UserBusCall &call, QObject *receiver, const Done &done)
{
    if (!m_bus)
        m_nextAttempt = {};
    add(call, {receiver, done});
}

void UserBus::add(const UserBusCall &call, const Caller &caller)
{
    m_waiting.push_back({call, caller, Clock::now() + patience});
    advance();
}

void UserBus::onActivity()
{
    if (m_bus) {
        // One message a turn of the event loop, or a peer that never ends would have it all.
        if (sd_bus_process(m_bus.get(), nullptr) < 0 || sd_bus_is_open(m_bus.get()) <= 0) {
            closeBus();
            endCallsThatWait();
        } else if (m_question == Question::Open && !m_questionSlot
            && sd_bus_is_ready(m_bus.get()) > 0) {
            m_question = Question::Answered;
            sendWaiting();
        }
    }
    advance();
}

/// Does what is due, and sees to it that what comes next is noticed.
void UserBus::advance()
{
    dropOverdue();
    if (m_bus && m_question == Question::Open && m_waiting.empty() && m_sent.empty())
        closeBus();
    if (!m_waiting.empty()) {
        if (!m_bus && m_nextAttempt <= Clock::now())
            connectToBus();
        else if (m_bus && m_question == Question::Answered)
            ask();
    }
    watch();
}

void UserBus::connectToBus()
{
    const Clock::time_point now = Clock::now();
    m_nextAttempt = now + retryInterval;
    m_answerDeadline = now + patience;
    m_question = Question::Open;

    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    sd_bus *bus = nullptr;
    int result = sd_bus_new(&bus);
    m_bus.reset(bus);
    if (result >= 0)
        result = sd_bus_set_address(bus, address.constData());
    if (result >= 0)
        result = sd_bus_set_bus_client(bus, 1);
    if (result >= 0)
        result = sd_bus_negotiate_fds(bus, 0);
    if (result >= 0)
        result = sd_bus_add_filter(bus, nullptr, passOver, nullptr);
    if (result >= 0)
        result = sd_bus_start(bus);
    if (result >= 0)
        return;
    closeBus();
    // A queue of connections that is full may get shorter; all else is there or it is not.
    if (result != -EAGAIN)
        endCallsThatWait();
}

void UserBus::ask()
{
    sd_bus_message *question = nullptr;
    sd_bus_slot *slot = nullptr;
    int result = sd_bus_message_new_method_call(m_bus.get(), &question, "org.freedesktop.DBus",
        "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId");
    if (result >= 0)
        result = sd_bus_call_async(m_bus.get(), &slot, question, onAnswer, this, noTimeout);
    sd_bus_message_unref(question);
    m_questionSlot.reset(slot);
    m_question = Question::Open;
    m_answerDeadline = Clock::now() + patience;
    if (result < 0)
        closeBus();
}

int UserBus::onAnswer(sd_bus_message *, void *self, sd_bus_error *) noexcept
{
    static_cast<UserBus *>(self)->m_questionSlot.reset();
    return 0;
}

int UserBus::onReply(sd_bus_message *reply, void *self, sd_bus_error *) noexcept
{
    auto &sent = static_cast<UserBus *>(self)->m_sent;
    sd_bus_slot *const slot = sd_bus_get_current_slot(sd_bus_message_get_bus(reply));
    const auto call = std::find_if(
        sent.begin(), sent.end(), [slot](const Sent &one) { return one.slot.get() == slot; });
    if (call != sent.end()) {
        tell(call->caller, Outcome::Over);
        sent.erase(call);
    }
    return 0;
}

void UserBus::sendWaiting()
{
    while (!m_waiting.empty()) {
        const int result = send(m_waiting.front());
        if (result < 0) {
            closeBus();
            return;
        }
        m_waiting.pop_front();
    }
}

/// Negative when the connection is lost.
int UserBus::send(const Waiting &waiting)
{
    const UserBusCall &call = waiting.call;
    sd_bus_message *message = nullptr;
    int result = sd_bus_message_new_method_call(
        m_bus.get(), &message, call.service, call.path, call.interface, call.method);
    if (result >= 0)
        result = call.arguments(message);
    if (result < 0) {
        qCWarning(userBusLog) << "Cannot make message for the user's bus:"
                              << nameOf(call).constData();
        tell(waiting.caller, Outcome::Over);
        result = 0;
    } else if (waiting.caller.done) {
        sd_bus_slot *slot = nullptr;
        result = sd_bus_call_async(m_bus.get(), &slot, message, onReply, this, noTimeout);
        if (result >= 0)
            m_sent.push_back({Slot(slot), waiting.caller, Clock::now() + replyPatience});
    } else {
        sd_bus_message_set_expect_reply(message, 0);
        result = sd_bus_send(m_bus.get(), message, nullptr);
    }
    sd_bus_message_unref(message);
    return result;
}

void UserBus::tell(const Caller &caller, Outcome outcome)
{
    if (!caller.receiver)
        return;
    QMetaObject::invokeMethod(
        caller.receiver, [done = caller.done, outcome] { done(outcome); }, Qt::QueuedConnection);
}

void UserBus::dropOverdue()
{
    const Clock::time_point now = Clock::now();
    while (!m_waiting.empty() && m_waiting.front().deadline <= now) {
        const Waiting &waiting = m_waiting.front();
        qCWarning(userBusLog) << "User's bus not reached in 10 s, dropping message:"
                              << nameOf(waiting.call).constData();
        tell(waiting.caller, Outcome::BusHangs);
        m_waiting.pop_front();
    }
    m_sent.remove_if([now](const Sent &sent) {
        const bool isOver = sent.deadline <= now;
        if (isOver)
            tell(sent.caller, Outcome::Over);
        return isOver;
    });
    if (m_bus && m_question == Question::Open && m_answerDeadline <= now)
        closeBus();
}

/// Those that somebody waits for: what was posted can wait for another connection.
void UserBus::endCallsThatWait()
{
    const auto isPosted = [](const Waiting &waiting) { return !waiting.caller.done; };
    const auto ended = std::stable_partition(m_waiting.begin(), m_waiting.end(), isPosted);
    std::for_each(ended, m_waiting.end(),
        [](const Waiting &waiting) { tell(waiting.caller, Outcome::Over); });
    m_waiting.erase(ended, m_waiting.end());
}

void UserBus::closeBus()
{
    m_readable.reset();
    m_writable.reset();
    m_questionSlot.reset();
    m_question = Question::Answered;
    for (const Sent &sent : m_sent)
        tell(sent.caller, Outcome::Over);
    m_sent.clear();
    m_bus.reset();
}

/// Has the timer end with whatever is due first, or not run at all.
void UserBus::watch()
{
    constexpr auto never = Clock::time_point::max();
    Clock::time_point next = never;
    if (!m_waiting.empty())
        next = m_waiting.front().deadline;
    for (const Sent &sent : m_sent)
        next = std::min(next, sent.deadline);
    if (m_bus) {
        watchSocket();
        if (m_question == Question::Open)
            next = std::min(next, m_answerDeadline);
        uint64_t timeout = noTimeout;
        if (sd_bus_get_timeout(m_bus.get(), &timeout) >= 0 && timeout != noTimeout)
            next = std::min(next, Clock::time_point(std::chrono::microseconds(timeout)));
    } else if (!m_waiting.empty()) {
        next = std::min(next, m_nextAttempt);
    }
    if (next == never)
        m_timer.stop();
    else
        m_timer.start(
            std::max(0ms, std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now())));
}

void UserBus::watchSocket()
{
    const int fd = sd_bus_get_fd(m_bus.get());
    if (!m_readable || m_readable->socket() != fd) {
        m_readable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
        m_writable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
        for (const QSocketNotifier *notifier : {m_readable.get(), m_writable.get()})
            connect(notifier, &QSocketNotifier::activated, this, &UserBus::onActivity);
    }
    const int events = sd_bus_get_events(m_bus.get());
    m_writable->setEnabled(events >= 0 && (events & POLLOUT) != 0);
}
