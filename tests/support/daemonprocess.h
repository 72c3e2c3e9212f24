// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/childprocess.h"

#include <QStringList>

/// The built lumd as a process of its own, with the fake libgbinder in the place of the real
/// one. It is killed with this object; what it printed is shown if the running test failed.
class DaemonProcess
{
public:
    DaemonProcess();
    ~DaemonProcess();
    Q_DISABLE_COPY(DaemonProcess)

    /// Adds to the environment, before the start. The daemon gets nothing of the test's own
    /// environment but PATH and the sanitizers' options.
    void setEnvironment(const QString &name, const QString &value);
    /// Where its fake libgbinder finds the test (RemoteFakeBinder::socketPath).
    void setBinderSocket(const QString &socketPath);
    /// QT_LOGGING_RULES; "com.tovra.lumd.*=true" unless set.
    void setLoggingRules(const QString &rules);

    /// Loads a module of lum_add_preload before all libraries.
    void preload(const QString &module);

    /// The lumd of the environment variable LUMD_PROGRAM, else the one of this build.
    static QString program();

    void start();
    int processId() const;
    bool isRunning() const;
    /// Sends a signal, such as SIGTERM.
    void signal(int number);
    void kill();

    /// The lines on standard error: "level category text" ("debug com.tovra.lumd.config ..."),
    /// with category "default" for those of no category of its own.
    QStringList lines() const;
    void clearLines();
    /// Waits for a line of exactly these words; false after the deadline (milliseconds) or
    /// when the daemon ended without it.
    bool waitForLine(const QString &line, int deadline = 10000);
    /// Waits until the daemon owns the name on the system bus; false after the deadline or
    /// when the daemon ended.
    bool waitForBusName(
        const QString &name = QStringLiteral("com.tovra.lumd"), int deadline = 10000);
    /// Waits for the end; false after the deadline.
    bool waitForExit(int deadline = 10000);
    /// After the end: the exit code, or -N when signal N ended it.
    int exitCode() const;

private:
    ChildProcess::Environment m_environment;
    ChildProcess m_process;
};
