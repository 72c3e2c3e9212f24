// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/agent.h"

#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/messages.h"
#include "tests/support/fakegbinder/world.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <sys/socket.h>
#include <sys/un.h>

#include <cstdlib>
#include <cstring>
#include <thread>

namespace FakeBinder {

namespace {

QJsonArray toJson(const QStringList &list)
{
    return QJsonArray::fromStringList(list);
}

Notice noticeOf(const QJsonObject &operation)
{
    return operation[QLatin1String("silent")].toBool() ? Notice::None : Notice::Deferred;
}

} // namespace

void Agent::connectIfAsked()
{
    static std::once_flag once;
    std::call_once(once, [] {
        const QByteArray path = qgetenv("FAKE_GBINDER_SOCKET");
        if (path.isEmpty())
            return;
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (path.size() >= int(sizeof(address.sun_path)))
            qFatal("fake gbinder: the path of the socket is too long: %s", path.constData());
        memcpy(address.sun_path, path.constData(), size_t(path.size()));
        if (::connect(socket, reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0)
            qFatal("fake gbinder: cannot connect to %s: %s", path.constData(), strerror(errno));
        // Lives as long as the process: its thread ends with it.
        static Agent &agent = *new Agent(socket);
        agent.handshake();
        std::thread([] { agent.serve(); }).detach();
    });
}

Agent::Agent(int socket) : m_socket(socket)
{
    World &world = World::instance();
    world.requestObserver = [this](const Request &request) {
        send({{QLatin1String("event"), QLatin1String("request")},
            {QLatin1String("request"), Messages::toJson(request)}});
    };
    world.publishedObserver = [this] {
        send({{QLatin1String("event"), QLatin1String("published")},
            {QLatin1String("published"), Messages::toJson(published())}});
    };
}

void Agent::handshake()
{
    Messages::receive(m_socket, &m_buffer,
        [this](const QJsonObject &message) { return take(message) && !m_isReady; });
    if (!m_isReady)
        qFatal("fake gbinder: the test went away");
}

void Agent::serve()
{
    Messages::receive(
        m_socket, &m_buffer, [this](const QJsonObject &message) { return take(message); });
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isClosed = true;
    m_replied.notify_all();
}

bool Agent::take(const QJsonObject &message)
{
    if (message.contains(QLatin1String("return"))) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_replies[message[QLatin1String("return")].toInt()] =
            Messages::replyFrom(message[QLatin1String("reply")].toObject());
        m_replied.notify_all();
    } else {
        perform(message);
    }
    return true;
}

void Agent::perform(const QJsonObject &operation)
{
    const QString name = operation[QLatin1String("op")].toString();
    if (name == QLatin1String("go")) {
        m_isReady = true;
        return;
    }
    if (name == QLatin1String("transact") || name == QLatin1String("transactObject")
        || name == QLatin1String("settle") || name == QLatin1String("quit")) {
        performInMainLoop(operation);
        return;
    }
    send({{QLatin1String("id"), operation[QLatin1String("id")]},
        {QLatin1String("result"), performNow(operation)}});
}

QJsonValue Agent::performNow(const QJsonObject &operation)
{
    const QString op = operation[QLatin1String("op")].toString();
    const QString name = operation[QLatin1String("name")].toString();
    const bool flag = operation[QLatin1String("flag")].toBool();
    if (op == QLatin1String("setPresent"))
        setPresent(flag);
    else if (op == QLatin1String("setProtocol"))
        setProtocol(flag ? Protocol::Aidl2 : Protocol::Aidl);
    else if (op == QLatin1String("registerService"))
        registerService(name, handlerFor(operation), noticeOf(operation));
    else if (op == QLatin1String("killService"))
        killService(name, noticeOf(operation));
    else if (op == QLatin1String("failClients"))
        failClients(name, flag);
    else if (op == QLatin1String("ledger"))
        return toJson(ledger());
    else if (op == QLatin1String("clearLedger"))
        clearLedger();
    else if (op == QLatin1String("leaks"))
        return toJson(leaks());
    else if (op == QLatin1String("errors"))
        return toJson(errors());
    else
        qFatal("fake gbinder: unknown operation %s", qPrintable(op));
    return {};
}

void Agent::performInMainLoop(const QJsonObject &operation)
{
    World::defer([this, operation] {
        const QString op = operation[QLatin1String("op")].toString();
        const Call call = Messages::callFrom(operation[QLatin1String("call")].toObject());
        Answer answer;
        if (op == QLatin1String("transact"))
            answer = transact(operation[QLatin1String("name")].toString(), call);
        else if (op == QLatin1String("transactObject"))
            answer = transactObject(quint32(operation[QLatin1String("object")].toInt()), call);
        else if (op == QLatin1String("quit"))
            QCoreApplication::exit(operation[QLatin1String("exitCode")].toInt());
        send({{QLatin1String("id"), operation[QLatin1String("id")]},
            {QLatin1String("result"), Messages::toJson(answer)}});
    });
}

void Agent::send(const QJsonObject &message)
{
    const std::lock_guard<std::mutex> lock(m_sendMutex);
    // When the test is gone there is nobody to tell; the daemon goes on.
    Messages::send(m_socket, message);
}

Handler Agent::handlerFor(const QJsonObject &operation)
{
    const int handler = operation[QLatin1String("handler")].toInt();
    if (handler == 0)
        return {};
    return [this, handler](const Request &request) { return forward(handler, request); };
}

Reply Agent::forward(int handler, const Request &request)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const int call = m_nextCall++;
    lock.unlock();
    send({{QLatin1String("call"), call}, {QLatin1String("handler"), handler},
        {QLatin1String("request"), Messages::toJson(request)}});
    lock.lock();
    m_replied.wait(lock, [this, call] { return m_isClosed || m_replies.count(call) > 0; });
    const auto found = m_replies.find(call);
    if (found == m_replies.end())
        return Reply::failure(GBINDER_STATUS_DEAD_OBJECT);
    const Reply reply = found->second;
    m_replies.erase(found);
    return reply;
}

} // namespace FakeBinder
