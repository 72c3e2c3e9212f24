// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/childprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstring>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class ChildProcess::Private
{
public:
    void spawn(const QString &program, const QStringList &arguments, const Environment &environment,
        Collect collect);
    void readOutput();
    void waitForEnd();
    bool waitFor(int deadline, const std::function<bool()> &condition);

    mutable std::mutex mutex;
    std::condition_variable changed;
    QStringList lines;
    int processId = 0;
    bool hasEnded = false;
    bool outputEnded = false;
    int exitCode = 0;
    int output = -1;
    int stop = -1; // wakes the reader
    std::thread reader;
    std::thread waiter;
};

void ChildProcess::Private::spawn(const QString &program, const QStringList &arguments,
    const Environment &environment, Collect collect)
{
    // Everything that allocates comes before the fork: other threads may hold locks.
    std::vector<QByteArray> words = {program.toLocal8Bit()};
    for (const QString &argument : arguments)
        words.push_back(argument.toLocal8Bit());
    std::vector<QByteArray> variables;
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        variables.push_back((it.key() + QLatin1Char('=') + it.value()).toLocal8Bit());
    std::vector<char *> argv;
    for (QByteArray &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    std::vector<char *> envp;
    for (QByteArray &variable : variables)
        envp.push_back(variable.data());
    envp.push_back(nullptr);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        qFatal("cannot make a pipe: %s", strerror(errno));
    // No signal comes before the child has done away with Qt Test's signal handlers.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    processId = ::fork();
    if (processId == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (int number = 1; number < NSIG; ++number)
            ::signal(number, SIG_DFL);
        sigemptyset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
        if (collect != Collect::Errors)
            ::dup2(ends[1], STDOUT_FILENO);
        if (collect != Collect::Output)
            ::dup2(ends[1], STDERR_FILENO);
        ::execve(argv[0], argv.data(), envp.data());
        ::_exit(127);
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (processId < 0)
        qFatal("cannot fork: %s", strerror(errno));
    ::close(ends[1]);
    output = ends[0];
    stop = ::eventfd(0, EFD_CLOEXEC);
}

void ChildProcess::Private::readOutput()
{
    QByteArray buffer;
    pollfd wanted[] = {{output, POLLIN, 0}, {stop, POLLIN, 0}};
    for (;;) {
        if (::poll(wanted, 2, -1) < 0)
            continue;
        if (wanted[0].revents == 0)
            break; // told to stop, and nothing is left to read
        char chunk[4096];
        const ssize_t count = ::read(output, chunk, sizeof(chunk));
        if (count <= 0)
            break;
        buffer.append(chunk, int(count));
        const std::lock_guard<std::mutex> lock(mutex);
        for (int end = buffer.indexOf('\n'); end >= 0; end = buffer.indexOf('\n')) {
            lines.append(QString::fromUtf8(buffer.left(end)));
            buffer.remove(0, end + 1);
        }
        changed.notify_all();
    }
    const std::lock_guard<std::mutex> lock(mutex);
    if (!buffer.isEmpty())
        lines.append(QString::fromUtf8(buffer));
    outputEnded = true;
    changed.notify_all();
}

void ChildProcess::Private::waitForEnd()
{
    int status = 0;
    while (::waitpid(processId, &status, 0) < 0 && errno == EINTR)
        continue;
    const std::lock_guard<std::mutex> lock(mutex);
    exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    hasEnded = true;
    // What it printed is in the pipe; a child of its own may keep the pipe open.
    const uint64_t one = 1;
    if (::write(stop, &one, sizeof(one)) != sizeof(one))
        qFatal("cannot wake the reader: %s", strerror(errno));
    changed.notify_all();
}

bool ChildProcess::Private::waitFor(int deadline, const std::function<bool()> &condition)
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, std::chrono::milliseconds(deadline),
        [this, &condition] { return condition() || (hasEnded && outputEnded); });
    return condition();
}

ChildProcess::ChildProcess() : m_d(std::make_unique<Private>()) { }

ChildProcess::~ChildProcess()
{
    kill();
}

void ChildProcess::start(const QString &program, const QStringList &arguments,
    const Environment &environment, Collect collect)
{
    if (::access(program.toLocal8Bit().constData(), X_OK) != 0)
        qFatal("cannot run %s: %s", qPrintable(program), strerror(errno));
    m_d->spawn(program, arguments, environment, collect);
    m_d->reader = std::thread([this] { m_d->readOutput(); });
    m_d->waiter = std::thread([this] { m_d->waitForEnd(); });
}

int ChildProcess::processId() const
{
    return m_d->processId;
}

bool ChildProcess::isRunning() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->processId > 0 && !m_d->hasEnded;
}

void ChildProcess::signal(int number)
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    if (m_d->processId > 0 && !m_d->hasEnded)
        ::kill(m_d->processId, number);
}

void ChildProcess::kill()
{
    signal(SIGKILL);
    if (m_d->waiter.joinable())
        m_d->waiter.join();
    if (m_d->reader.joinable())
        m_d->reader.join();
    if (m_d->output >= 0)
        ::close(m_d->output);
    if (m_d->stop >= 0)
        ::close(m_d->stop);
    m_d->output = -1;
    m_d->stop = -1;
}

QStringList ChildProcess::lines() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->lines;
}

void ChildProcess::clearLines()
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->lines.clear();
}

bool ChildProcess::waitForLine(const QString &line, int deadline)
{
    return m_d->waitFor(deadline, [this, &line] { return m_d->lines.contains(line); });
}

bool ChildProcess::waitForLineThatBegins(const QString &words, int deadline)
{
    return m_d->waitFor(deadline, [this, &words] {
        return std::any_of(m_d->lines.cbegin(), m_d->lines.cend(),
            [&words](const QString &line) { return line.startsWith(words); });
    });
}

bool ChildProcess::waitForExit(int deadline)
{
    return m_d->waitFor(deadline, [this] { return m_d->hasEnded && m_d->outputEnded; });
}

int ChildProcess::exitCode() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->exitCode;
}
