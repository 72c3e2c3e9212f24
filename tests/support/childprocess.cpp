// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/childprocess.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>
#include <utility>

// QProcess adds variables of its own, and takes no environment for the test's.
void ChildProcess::Program::setVariables(const Environment &environment)
{
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        m_variables.push_back((it.key() + QLatin1Char('=') + it.value()).toLocal8Bit());
    for (QByteArray &variable : m_variables)
        m_environment.push_back(variable.data());
    m_environment.push_back(nullptr);
}

// Allocates nothing: other threads of the test may have held locks.
void ChildProcess::Program::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    environ = m_environment.data();
}

ChildProcess::~ChildProcess()
{
    kill();
}

void ChildProcess::start(const QString &program, const QStringList &arguments,
    const Environment &environment, Collect collect)
{
    if (!m_output.open())
        qFatal("cannot make a file for the output of %s", qPrintable(program));
    if (collect == Collect::Errors)
        m_program.setStandardErrorFile(m_output.fileName());
    else
        m_program.setStandardOutputFile(m_output.fileName());
    m_program.setProcessChannelMode(collect == Collect::Errors ? QProcess::ForwardedOutputChannel
            : collect == Collect::Output                       ? QProcess::ForwardedErrorChannel
                                                               : QProcess::MergedChannels);
    m_program.setInputChannelMode(QProcess::ForwardedInputChannel);
    m_program.setVariables(environment);
    m_program.start(program, arguments);
    if (!m_program.waitForStarted())
        qFatal("cannot run %s: %s", qPrintable(program), qPrintable(m_program.errorString()));
    m_processId = int(m_program.processId());
}

bool ChildProcess::isRunning() const
{
    m_program.waitForFinished(0);
    return m_program.state() != QProcess::NotRunning;
}

void ChildProcess::signal(int number)
{
    if (isRunning())
        ::kill(m_processId, number);
}

void ChildProcess::kill()
{
    signal(SIGKILL);
    m_program.waitForFinished(-1);
}

QStringList ChildProcess::lines() const
{
    const bool isAll = !isRunning();
    QList<QByteArray> lines = (m_begunLine + m_output.readAll()).split('\n');
    m_begunLine = lines.takeLast();
    if (isAll && !m_begunLine.isEmpty())
        lines.append(std::exchange(m_begunLine, {}));
    for (const QByteArray &line : qAsConst(lines))
        m_lines.append(QString::fromUtf8(line));
    return m_lines;
}

void ChildProcess::clearLines()
{
    lines();
    m_lines.clear();
}

bool ChildProcess::waitFor(int deadline, const std::function<bool()> &condition)
{
    constexpr int pause = 5;
    // Not by a clock, which a test may have stopped.
    for (int waited = 0; waited < deadline && isRunning() && !condition(); waited += pause)
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    return condition();
}

bool ChildProcess::waitForLine(const QString &line, int deadline)
{
    return waitFor(deadline, [this, &line] { return lines().contains(line); });
}

bool ChildProcess::waitForLineThatBegins(const QString &words, int deadline)
{
    return waitFor(deadline, [this, &words] {
        const QStringList all = lines();
        return std::any_of(all.cbegin(), all.cend(),
            [&words](const QString &line) { return line.startsWith(words); });
    });
}

bool ChildProcess::waitForExit(int deadline)
{
    return waitFor(deadline, [this] { return !isRunning(); });
}

int ChildProcess::exitCode() const
{
    const int code = m_program.exitCode();
    return m_program.exitStatus() == QProcess::NormalExit ? code : -code;
}
