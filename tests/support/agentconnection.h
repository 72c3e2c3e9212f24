// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/fakebindertypes.h"

#include <QJsonObject>
#include <QMap>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// The test's end of the socket to the fake libgbinder inside a daemon: performs operations
/// there, and answers calls of Android services with the handlers that it keeps. Its thread
/// reads the socket.
class AgentConnection
{
public:
    explicit AgentConnection(const QString &path);
    ~AgentConnection();

    /// Gives its result; nothing when the daemon has not connected yet or is gone.
    QJsonValue perform(QJsonObject operation);
    /// Gives the number by which the daemon asks for the handler; 0 for none.
    int keep(const FakeBinder::Handler &handler);
    /// Waits, with the mutex held, until the condition is true; false after ten seconds.
    bool waitFor(const std::function<bool()> &condition);

    QString path;
    mutable std::mutex mutex;
    QVector<FakeBinder::Request> requests;
    QVector<FakeBinder::PublishedService> published;

private:
    void serve();
    bool take(const QJsonObject &message);
    void answer(const QJsonObject &call);
    void send(const QJsonObject &message);

    int m_listener = -1;
    int m_socket = -1;
    bool m_isConnected = false;
    bool m_isClosed = false;
    QVector<QJsonObject> m_setup; // operations that wait for the daemon
    std::condition_variable m_changed;
    QMap<int, QJsonValue> m_results;
    QMap<int, FakeBinder::Handler> m_handlers;
    int m_nextHandler = 1;
    int m_nextOperation = 1;
    std::mutex m_sendMutex;
    std::thread m_thread;
};
