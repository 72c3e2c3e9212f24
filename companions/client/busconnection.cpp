// SPDX-License-Identifier: BSD-3-Clause
#include "client/busconnection.h"

#include "client/messages.h"

#include <QPointer>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <poll.h>

using namespace std::chrono_literals;

namespace {

// The deadlines are kept here: those of the library begin when the bus has let it in.
constexpr uint64_t noTimeout = UINT64_MAX;

ClientError noBus(int result)
{
    return {ClientError::Kind::NoDaemon, QString::fromLocal8Bit(std::strerror(-result))};
}

} // namespace

BusConnection::BusConnection(QObject *parent) : QObject(parent), m_timer(this)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &BusConnection::onActivity);
}

BusConnection::~BusConnection() = default;

void BusConnection::call(const BusMethod &method, const Arguments &arguments,
    std::chrono::milliseconds limit, const Reply &reply)
{
    m_calls.push_back(std::make_unique<PendingCall>());
    PendingCall *const call = m_calls.back().get();
    call->connection = this;
    call->reply = reply;
    call->deadline.setTimerType(Qt::PreciseTimer);
    call->deadline.setSingleShot(true);
    const int result = send(method, arguments, *call);
    const ClientError error = result < 0
        ? noBus(result)
        : ClientError{ClientError::Kind::TimedOut, QStringLiteral("No answer in time")};
    connect(&call->deadline, &QTimer::timeout, this,
        [this, call, error] { finish(call, nullptr, error); });
    call->deadline.start(result < 0 ? 0ms : limit);
    prepareForActivity();
}

int BusConnection::send(const BusMethod &method, const Arguments &arguments, PendingCall &call)
{
    if (!open())
        return -ENOTCONN;
    sd_bus_message *message = nullptr;
    int result = sd_bus_message_new_method_call(
        m_bus.get(), &message, method.service, method.path, method.interface, method.member);
    if (result >= 0)
        result = sd_bus_message_set_auto_start(message, 0);
    if (result >= 0 && arguments)
        result = arguments(message);
    sd_bus_slot *slot = nullptr;
    if (result >= 0)
        result = sd_bus_call_async(m_bus.get(), &slot, message, onReply, &call, noTimeout);
    call.slot.reset(slot);
    sd_bus_message_unref(message);
    return result;
}

void BusConnection::watch(const char *rule, const Signal &handler)
{
    if (!open())
        return;
    m_watches.push_back(std::make_unique<Watch>());
    Watch *const watch = m_watches.back().get();
    watch->handler = handler;
    sd_bus_slot *slot = nullptr;
    sd_bus_add_match_async(m_bus.get(), &slot, rule, onSignal, nullptr, watch);
    watch->slot.reset(slot);
    prepareForActivity();
}

bool BusConnection::open()
{
    if (!m_bus) {
        sd_bus *bus = nullptr;
        sd_bus_open_system(&bus);
        m_bus.reset(bus);
    }
    return m_bus != nullptr;
}

int BusConnection::onReply(sd_bus_message *reply, void *call, sd_bus_error *) noexcept
{
    auto *const pending = static_cast<PendingCall *>(call);
    const sd_bus_error *const error = sd_bus_message_get_error(reply);
    if (error == nullptr)
        pending->connection->finish(pending, reply, {});
    else
        pending->connection->finish(pending, nullptr, errorOf(error));
    return 0;
}

int BusConnection::onSignal(sd_bus_message *signal, void *watch, sd_bus_error *) noexcept
{
    static_cast<Watch *>(watch)->handler(signal);
    return 0;
}

void BusConnection::finish(const PendingCall *call, sd_bus_message *reply, const ClientError &error)
{
    const auto found = std::find_if(
        m_calls.begin(), m_calls.end(), [call](const auto &one) { return one.get() == call; });
    const std::unique_ptr<PendingCall> finished = std::move(*found);
    m_calls.erase(found);
    finished->slot.reset();
    finished->reply(reply, error);
}

void BusConnection::onActivity()
{
    const QPointer<BusConnection> self(this);
    const int result = sd_bus_process(m_bus.get(), nullptr);
    if (!self)
        return;
    // A callback that runs an event loop of its own comes by here again.
    if (result == -EBUSY)
        return;
    if (result < 0 || sd_bus_is_open(m_bus.get()) <= 0) {
        close();
        return;
    }
    prepareForActivity();
}

void BusConnection::prepareForActivity()
{
    if (!m_bus)
        return;
    const int fd = sd_bus_get_fd(m_bus.get());
    if (!m_readable || m_readable->socket() != fd) {
        m_readable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
        m_writable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
        for (const QSocketNotifier *notifier : {m_readable.get(), m_writable.get()})
            connect(notifier, &QSocketNotifier::activated, this, &BusConnection::onActivity);
    }
    const int events = sd_bus_get_events(m_bus.get());
    m_writable->setEnabled(events >= 0 && (events & POLLOUT) != 0);
    uint64_t timeout = noTimeout;
    if (sd_bus_get_timeout(m_bus.get(), &timeout) < 0 || timeout == noTimeout) {
        m_timer.stop();
        return;
    }
    const std::chrono::steady_clock::time_point due{std::chrono::microseconds(timeout)};
    m_timer.start(std::max(
        0ms, std::chrono::ceil<std::chrono::milliseconds>(due - std::chrono::steady_clock::now())));
}

void BusConnection::close()
{
    m_timer.stop();
    m_readable.reset();
    m_writable.reset();
    m_watches.clear();
    for (const std::unique_ptr<PendingCall> &call : m_calls)
        call->slot.reset();
    m_bus.reset();
    const QPointer<BusConnection> self(this);
    while (self && !m_calls.empty())
        finish(m_calls.front().get(), nullptr,
            {ClientError::Kind::NoDaemon, QStringLiteral("The connection to the bus was lost")});
    if (self)
        Q_EMIT lost();
}
