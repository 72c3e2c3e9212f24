// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "controlserver.h"

#include <QObject>

class AlienRuntime;

/// The commands of the control socket; README.md tells of each.
class RuntimeControl : public QObject
{
    Q_OBJECT

public:
    explicit RuntimeControl(AlienRuntime *runtime);

    /// @return empty on success, else the reason.
    QString listen() { return m_server.listen(QStringLiteral("/run/alien-runtime/control")); }

private:
    using Respond = ControlServer::Respond;

    void handle(const QJsonObject &request, const Respond &respond);
    void announce(const QJsonObject &request, const Respond &respond);
    void complete(const QJsonObject &request, const Respond &respond);
    void remove(const QJsonObject &request, const Respond &respond);
    void sendRaw(const QJsonObject &request, const Respond &respond);
    void status(const QJsonObject &request, const Respond &respond);
    void calls(const QJsonObject &request, const Respond &respond);
    void wait(const QJsonObject &request, const Respond &respond);
    void apps(const QJsonObject &request, const Respond &respond);
    void windows(const QJsonObject &request, const Respond &respond);
    void timezone(const QJsonObject &request, const Respond &respond);
    void failNext(const QJsonObject &request, const Respond &respond);
    /// Answers with the records of the calls, once the last of them is done.
    void send(const QVector<struct LauncherCall> &calls, const Respond &respond);

    AlienRuntime *const m_runtime;
    ControlServer m_server;
};
