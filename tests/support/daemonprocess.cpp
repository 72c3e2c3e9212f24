// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/daemonprocess.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <QtTest>

#include <csignal>
#include <cstdio>

#ifdef MEASURES_COVERAGE
namespace {

// A process that has just been started blocks none yet.
bool blocksOnlySignal(int processId, int number)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(processId));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray key = QByteArrayLiteral("SigBlk:\t");
    const QByteArray text = status.readAll();
    const int begin = text.indexOf(key) + key.size();
    constexpr int hexDigits = 16;
    return text.mid(begin, hexDigits).toULongLong(nullptr, 16) == quint64(1) << (number - 1);
}

} // namespace
#endif

DaemonProcess::DaemonProcess()
{
    m_environment = {
        {QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin")},
        {QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8")},
        {QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral(FAKE_GBINDER_FOLDER)},
        {QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("com.tovra.lumd.*=true")},
        {QStringLiteral("QT_MESSAGE_PATTERN"), QStringLiteral("%{type} %{category} %{message}")},
        {QStringLiteral("QT_LOGGING_TO_CONSOLE"), QStringLiteral("1")},
    };
    for (const char *name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            m_environment.insert(QString::fromLatin1(name), qEnvironmentVariable(name));
    }
}

DaemonProcess::~DaemonProcess()
{
    kill();
    if (!QTest::currentTestFailed())
        return;
    for (const QString &line : m_process.lines())
        fprintf(stderr, "lumd: %s\n", qPrintable(line));
}

void DaemonProcess::setEnvironment(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

void DaemonProcess::setBinderSocket(const QString &socketPath)
{
    setEnvironment(QStringLiteral("FAKE_GBINDER_SOCKET"), socketPath);
}

void DaemonProcess::setLoggingRules(const QString &rules)
{
    setEnvironment(QStringLiteral("QT_LOGGING_RULES"), rules);
}

void DaemonProcess::preload(const QString &module)
{
    setEnvironment(QStringLiteral("LD_PRELOAD"), module);
    setEnvironment(QStringLiteral("ASAN_OPTIONS"),
        qEnvironmentVariable("ASAN_OPTIONS") + QStringLiteral(":verify_asan_link_order=0"));
}

QString DaemonProcess::program()
{
    return qEnvironmentVariable("LUMD_PROGRAM", QStringLiteral(LUMD_PROGRAM));
}

void DaemonProcess::start()
{
    m_process.start(program(), {}, m_environment, ChildProcess::Collect::Errors);
}

int DaemonProcess::processId() const
{
    return m_process.processId();
}

bool DaemonProcess::isRunning() const
{
    return m_process.isRunning();
}

void DaemonProcess::signal(int number)
{
    m_process.signal(number);
}

void DaemonProcess::kill()
{
#ifdef MEASURES_COVERAGE
    if (isRunning() && blocksOnlySignal(processId(), SIGUSR2)) {
        constexpr int patience = 5000;
        m_process.signal(SIGUSR2); // tests/coverage/countsatend.cpp
        m_process.waitForExit(patience);
    }
#endif
    m_process.kill();
}

QStringList DaemonProcess::lines() const
{
    return m_process.lines();
}

void DaemonProcess::clearLines()
{
    m_process.clearLines();
}

bool DaemonProcess::waitForLine(const QString &line, int deadline)
{
    return m_process.waitForLine(line, deadline);
}

bool DaemonProcess::waitForBusName(const QString &name, int deadline)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    QDBusServiceWatcher watcher(name, bus, QDBusServiceWatcher::WatchForRegistration);
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, &QEventLoop::quit);
    QTimer over;
    over.setSingleShot(true);
    QObject::connect(&over, &QTimer::timeout, &loop, &QEventLoop::quit);
    over.start(deadline);
    // For a look at the daemon, of whose end the bus says nothing.
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, &QEventLoop::quit);
    look.start(100);
    const auto isOwned = [&bus, &name] {
        return bus.interface()->isServiceRegistered(name).value();
    };
    // The signals of a connection wait for its first event loop: one may tell of an earlier daemon.
    while (!isOwned() && isRunning() && over.isActive())
        loop.exec();
    return isOwned();
}

bool DaemonProcess::waitForExit(int deadline)
{
    return m_process.waitForExit(deadline);
}

int DaemonProcess::exitCode() const
{
    return m_process.exitCode();
}
