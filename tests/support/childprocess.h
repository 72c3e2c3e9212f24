// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <functional>
#include <vector>

/// A program that runs beside the test and dies with it. What it prints goes into a file, so that
/// it never blocks on a full pipe, and nobody need read while it runs.
class ChildProcess
{
public:
    /// Which output is collected; what is not goes where the test's own goes.
    enum class Collect { Output, Errors, Both };
    using Environment = QMap<QString, QString>;

    ChildProcess() = default;
    /// Kills the program if it still runs.
    ~ChildProcess();
    Q_DISABLE_COPY(ChildProcess)

    /// `program` is an absolute path; `environment` is the whole environment. A failure to
    /// start ends the test process with a message.
    void start(const QString &program, const QStringList &arguments, const Environment &environment,
        Collect collect);
    /// 0 before the start.
    int processId() const { return m_processId; }
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
    class Program : public QProcess
    {
    public:
        void setVariables(const Environment &environment);

    protected:
        void setupChildProcess() override;

    private:
        std::vector<QByteArray> m_variables;
        std::vector<char *> m_environment;
    };

    bool waitFor(int deadline, const std::function<bool()> &condition);

    int m_processId = 0;
    // What a look brings up to date.
    mutable Program m_program;
    mutable QTemporaryFile m_output;
    mutable QByteArray m_begunLine;
    mutable QStringList m_lines;
};
