// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>

/// A program that runs beside the test and dies with it. What it prints is collected line
/// by line in a thread, so that it never blocks on a full pipe.
class ChildProcess
{
public:
    /// Which output is collected; what is not goes where the test's own goes.
    enum class Collect { Output, Errors, Both };
    using Environment = QMap<QString, QString>;

    ChildProcess();
    /// Kills the program if it still runs.
    ~ChildProcess();
    Q_DISABLE_COPY(ChildProcess)

    /// `program` is an absolute path; `environment` is the whole environment. A failure to
    /// start ends the test process with a message.
    void start(const QString &program, const QStringList &arguments, const Environment &environment,
        Collect collect);
    /// 0 before the start.
    int processId() const;
    bool isRunning() const;
    void signal(int number);
    /// Kills it and waits for its end.
    void kill();

    /// What it printed so far, without the line ends.
    QStringList lines() const;
    void clearLines();
    /// Waits for a line of exactly these words; false when the deadline (milliseconds) passes
    /// or the program ends without it.
    bool waitForLine(const QString &line, int deadline = 10000);
    /// The same for a line that begins with these words.
    bool waitForLineThatBegins(const QString &words, int deadline = 10000);
    /// Waits for its end and for all of its output; false when the deadline passes.
    bool waitForExit(int deadline = 10000);
    /// Its exit code after its end; -N when signal N ended it.
    int exitCode() const;

private:
    class Private;
    std::unique_ptr<Private> m_d;
};
