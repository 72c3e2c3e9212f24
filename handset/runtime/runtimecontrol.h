// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "controlserver.h"

#include <QObject>

#include <functional>

class AlienRuntime;

/// The commands of the control socket; README.md tells of each. What is not of the runtime
/// as a whole goes on to the system server.
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
    void status(const QJsonObject &request, const Respond &respond);
    void calls(const QJsonObject &request, const Respond &respond);
    void wait(const QJsonObject &request, const Respond &respond);
    void crash(const QJsonObject &request, const Respond &respond);
    void recover(const QJsonObject &request, const Respond &respond);
    /// Answers once that holds, which a service's coming or going brings about.
    void respondWhen(const std::function<bool()> &holds, const Respond &respond);
    static QJsonObject statusRequest();

    AlienRuntime *const m_runtime;
    ControlServer m_server;
};
