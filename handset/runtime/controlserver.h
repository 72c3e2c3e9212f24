// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QLocalServer>
#include <QObject>

#include <functional>

class QLocalSocket;

/// The control socket: one JSON object a line, one answer a line for each, in the order in
/// which the answers become known.
class ControlServer : public QObject
{
    Q_OBJECT

public:
    /// To be called once; it may be later, and the client may have left by then.
    using Respond = std::function<void(const QJsonObject &)>;
    using Handler = std::function<void(const QJsonObject &request, const Respond &respond)>;

    explicit ControlServer(Handler handler);

    /// @return empty on success, else the reason.
    QString listen(const QString &path);

private:
    void accept();
    void readLines(QLocalSocket *client);

    const Handler m_handler;
    QLocalServer m_server;
};
