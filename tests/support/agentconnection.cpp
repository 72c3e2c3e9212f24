// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/agentconnection.h"

#include "tests/support/fakegbinder/messages.h"

#include <QJsonArray>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstring>

using namespace FakeBinder;

namespace {

constexpr std::chrono::seconds Deadline(10);

} // namespace

AgentConnection::AgentConnection(const QString &socketPath) : path(socketPath)
{
    const QByteArray name = socketPath.toUtf8();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (name.size() >= int(sizeof(address.sun_path)))
        qFatal("the path of the socket is too long: %s", name.constData());
    memcpy(address.sun_path, name.constData(), size_t(name.size()));
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0
        || ::listen(m_listener, 1) != 0)
        qFatal("cannot listen on %s: %s", name.constData(), strerror(errno));
    m_thread = std::thread([this] { serve(); });
}

AgentConnection::~AgentConnection()
{
    ::shutdown(m_listener, SHUT_RDWR);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (m_socket >= 0)
            ::shutdown(m_socket, SHUT_RDWR);
    }
    m_thread.join();
    ::close(m_listener);
    if (m_socket >= 0)
        ::close(m_socket);
    ::unlink(path.toUtf8().constData());
}

void AgentConnection::serve()
{
    const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0)
        return;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        m_socket = socket;
        for (const QJsonObject &operation : qAsConst(m_setup))
            send(operation);
        send({{QLatin1String("op"), QLatin1String("go")}});
        m_isConnected = true;
    }
    QByteArray buffer;
    Messages::receive(
        socket, &buffer, [this](const QJsonObject &message) { return take(message); });
    const std::lock_guard<std::mutex> lock(mutex);
    m_isClosed = true;
    m_changed.notify_all();
}

bool AgentConnection::take(const QJsonObject &message)
{
    if (message.contains(QLatin1String("call"))) {
        answer(message);
        return true;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    const QString event = message[QLatin1String("event")].toString();
    if (event == QLatin1String("request"))
        requests.append(Messages::requestFrom(message[QLatin1String("request")].toObject()));
    else if (event == QLatin1String("published"))
        published = Messages::servicesFrom(message[QLatin1String("published")].toArray());
    else
        m_results.insert(message[QLatin1String("id")].toInt(), message[QLatin1String("result")]);
    m_changed.notify_all();
    return true;
}

void AgentConnection::answer(const QJsonObject &call)
{
    std::unique_lock<std::mutex> lock(mutex);
    const Handler handler = m_handlers.value(call[QLatin1String("handler")].toInt());
    lock.unlock();
    const Reply reply = handler(Messages::requestFrom(call[QLatin1String("request")].toObject()));
    send({{QLatin1String("return"), call[QLatin1String("call")]},
        {QLatin1String("reply"), Messages::toJson(reply)}});
}

void AgentConnection::send(const QJsonObject &message)
{
    const std::lock_guard<std::mutex> lock(m_sendMutex);
    // A daemon that is gone shows in receive.
    Messages::send(m_socket, message);
}

QJsonValue AgentConnection::perform(QJsonObject operation)
{
    std::unique_lock<std::mutex> lock(mutex);
    const int id = m_nextOperation++;
    operation.insert(QLatin1String("id"), id);
    if (!m_isConnected) {
        m_setup.append(operation);
        return {};
    }
    send(operation);
    // A handler cannot wait for the thread that it runs in.
    if (std::this_thread::get_id() == m_thread.get_id())
        return {};
    const bool answered = m_changed.wait_for(
        lock, Deadline, [this, id] { return m_isClosed || m_results.contains(id); });
    if (!answered)
        qFatal(
            "the daemon did not answer %s", qPrintable(operation[QLatin1String("op")].toString()));
    return m_results.take(id);
}

int AgentConnection::keep(const Handler &handler)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!handler)
        return 0;
    m_handlers.insert(m_nextHandler, handler);
    return m_nextHandler++;
}

bool AgentConnection::waitFor(const std::function<bool()> &condition)
{
    std::unique_lock<std::mutex> lock(mutex);
    m_changed.wait_for(lock, Deadline, [this, &condition] { return m_isClosed || condition(); });
    return condition();
}
