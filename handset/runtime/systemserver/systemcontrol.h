// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QVector>

#include <functional>

class AndroidService;
class SystemServer;
struct LauncherCall;

/// The control commands that the system server handles; README.md tells of each.
class SystemControl
{
public:
    /// To be called once; it may be later.
    using Respond = std::function<void(const QJsonObject &)>;

    explicit SystemControl(SystemServer *server) : m_server(server) { }

    void handle(const QJsonObject &request, const Respond &respond);

private:
    void announce(const QJsonObject &request, const Respond &respond);
    void complete(const QJsonObject &request, const Respond &respond);
    void remove(const QJsonObject &request, const Respond &respond);
    void sendRaw(const QJsonObject &request, const Respond &respond);
    void status(const QJsonObject &request, const Respond &respond);
    void apps(const QJsonObject &request, const Respond &respond);
    void windows(const QJsonObject &request, const Respond &respond);
    void timezone(const QJsonObject &request, const Respond &respond);
    void failNext(const QJsonObject &request, const Respond &respond);
    void clearDelay(const QJsonObject &request, const Respond &respond);
    void hold(const QJsonObject &request, const Respond &respond);
    void release(const QJsonObject &request, const Respond &respond);
    void launcherRegistered(const QJsonObject &request, const Respond &respond);
    /// Answers with the records of the calls, once the last of them is done.
    void send(const QVector<LauncherCall> &calls, const Respond &respond);
    /// The service that a request names; where there is none, the answer says so.
    AndroidService *serviceOf(const QJsonObject &request, const Respond &respond) const;

    SystemServer *const m_server;
};
