// SPDX-License-Identifier: BSD-3-Clause
#include "tests/companions/lumctlrun.h"

#include <QJsonDocument>
#include <QtTest>

LumctlRun::LumctlRun(const QStringList &arguments)
    : m_arguments(arguments),
      m_environment({
          {QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin")},
          {QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8")},
          {QStringLiteral("TERM"), QStringLiteral("xterm")},
      })
{
    for (const char *name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            setEnvironment(QString::fromLatin1(name), qEnvironmentVariable(name));
    }
}

void LumctlRun::setEnvironment(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

void LumctlRun::start(bool onTerminal)
{
    const QString program = QStringLiteral(LUMCTL_PROGRAM);
    if (!onTerminal) {
        m_process.start(program, m_arguments, m_environment, ChildProcess::Collect::Both);
        return;
    }
    QStringList quoted = {program};
    for (const QString &argument : qAsConst(m_arguments))
        quoted.append(QLatin1Char('\'') + argument + QLatin1Char('\''));
    m_process.start(QStringLiteral("/usr/bin/script"),
        {QStringLiteral("--quiet"), QStringLiteral("--return"), QStringLiteral("--command"),
            QStringLiteral("stty cols 80; exec ") + quoted.join(QLatin1Char(' ')),
            QStringLiteral("/dev/null")},
        m_environment, ChildProcess::Collect::Both);
}

bool LumctlRun::waitForEnd()
{
    constexpr int patience = 50000;
    return QTest::qWaitFor([this] { return !m_process.isRunning(); }, patience)
        && m_process.waitForExit();
}

QStringList lumctl(const QStringList &arguments)
{
    LumctlRun run(arguments);
    run.start();
    if (!run.waitForEnd())
        return {QStringLiteral("it does not end")};
    return run.lines() + QStringList{QStringLiteral("exit %1").arg(run.exitCode())};
}

QJsonObject lumctlJson(const QStringList &arguments)
{
    LumctlRun run(arguments + QStringList{QStringLiteral("--json")});
    run.start();
    if (!run.waitForEnd() || run.lines().size() != 1)
        return {};
    QJsonObject document = QJsonDocument::fromJson(run.lines().first().toUtf8()).object();
    document.insert(QStringLiteral("exit"), run.exitCode());
    return document;
}

QStringList words(const char *line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '));
}
