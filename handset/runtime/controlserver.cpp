// SPDX-License-Identifier: BSD-3-Clause
#include "controlserver.h"

#include <QJsonDocument>
#include <QLocalSocket>
#include <QPointer>

#include <utility>

ControlServer::ControlServer(Handler handler) : m_handler(std::move(handler))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &ControlServer::accept);
}

QString ControlServer::listen(const QString &path)
{
    QLocalServer::removeServer(path);
    return m_server.listen(path) ? QString()
                                 : QStringLiteral("%1: %2").arg(path, m_server.errorString());
}

void ControlServer::accept()
{
    QLocalSocket *client = m_server.nextPendingConnection();
    connect(client, &QLocalSocket::readyRead, this, [this, client] { readLines(client); });
    connect(client, &QLocalSocket::disconnected, client, &QLocalSocket::deleteLater);
}

void ControlServer::readLines(QLocalSocket *client)
{
    while (client->canReadLine()) {
        const QJsonObject request = QJsonDocument::fromJson(client->readLine()).object();
        m_handler(request, [target = QPointer<QLocalSocket>(client)](const QJsonObject &answer) {
            if (target)
                target->write(QJsonDocument(answer).toJson(QJsonDocument::Compact) + '\n');
        });
    }
}
