// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QProcess>

/// The service manager's process, seen from the runtime's.
class ServiceManagerProcess : public QObject
{
    Q_OBJECT

public:
    ServiceManagerProcess();
    ~ServiceManagerProcess() override;

    /// Starts the program that lies beside this one.
    void start(int sdk);

Q_SIGNALS:
    /// An event that the process printed.
    void eventReceived(const QJsonObject &event);
    /// It is gone, which it must not be while the runtime lives.
    void stopped(const QString &reason);

private:
    void readLines();

    QProcess m_process;
};
