// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QProcess>

/// A process of the runtime's beside the one that systemd starts. The two exchange JSON
/// objects, one a line, over its standard input and output; it ends with its input.
class RuntimeProcess : public QObject
{
    Q_OBJECT

public:
    /// @param program its name; it lies beside this one.
    explicit RuntimeProcess(QString program);
    ~RuntimeProcess() override;

    /// @param sdk is its one argument.
    void start(int sdk);
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    void send(const QJsonObject &line);
    /// Ends it as a crash would.
    void kill() { m_process.kill(); }

Q_SIGNALS:
    /// A line that the process printed.
    void received(const QJsonObject &line);
    /// It is gone; all that it printed was received before.
    void stopped(const QString &reason);

private:
    void readLines();

    const QString m_program;
    QProcess m_process;
};
