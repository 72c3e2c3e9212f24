// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/fakebindertypes.h"

#include <QJsonObject>

#include <condition_variable>
#include <map>
#include <mutex>

namespace FakeBinder {

/// Inside a daemon: lets the test at the other end of a socket drive this process's world.
/// It reads the socket in a thread of its own, so it answers also while the daemon's main
/// thread waits for an Android service.
class Agent
{
public:
    /// Connects to the socket that FAKE_GBINDER_SOCKET names, if it is set, and returns when
    /// the test has set up its world. Does nothing the second time.
    static void connectIfAsked();

private:
    explicit Agent(int socket);

    void handshake();
    void serve();
    bool take(const QJsonObject &message);
    void perform(const QJsonObject &operation);
    QJsonValue performNow(const QJsonObject &operation);
    void performInMainLoop(const QJsonObject &operation);
    void send(const QJsonObject &message);
    Handler handlerFor(const QJsonObject &operation);
    Reply forward(int handler, const Request &request);

    int m_socket;
    QByteArray m_buffer;
    bool m_isReady = false;
    std::mutex m_sendMutex;
    std::mutex m_mutex;
    std::condition_variable m_replied;
    std::map<int, Reply> m_replies;
    int m_nextCall = 1;
    bool m_isClosed = false;
};

} // namespace FakeBinder
