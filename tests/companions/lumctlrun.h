// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/childprocess.h"

#include <QJsonObject>
#include <QStringList>

/// One run of the built lumctl, in English and without a terminal unless said otherwise.
class LumctlRun
{
public:
    explicit LumctlRun(const QStringList &arguments);

    /// Before the start.
    void setEnvironment(const QString &name, const QString &value);
    /// Runs it behind a terminal of its own, of 80 columns.
    void start(bool onTerminal = false);

    ChildProcess &process() { return m_process; }
    /// Waits for its end while the event loop turns; false when it does not come.
    bool waitForEnd();
    /// After the end: what it printed on both ways, and how it ended.
    QStringList lines() const { return m_process.lines(); }
    int exitCode() const { return m_process.exitCode(); }

private:
    QStringList m_arguments;
    ChildProcess::Environment m_environment;
    ChildProcess m_process;
};

/// What a run printed, and behind it a line "exit N".
QStringList lumctl(const QStringList &arguments);

/// The one JSON document of a run, its exit code as "exit" in it; an object without keys for
/// anything else.
QJsonObject lumctlJson(const QStringList &arguments);

/// The arguments of a command line without blanks in a word.
QStringList words(const char *line);
