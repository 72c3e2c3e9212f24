// SPDX-License-Identifier: BSD-3-Clause
#include "runtimeprocess.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <utility>

RuntimeProcess::RuntimeProcess(QString program) : m_program(std::move(program))
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &RuntimeProcess::readLines);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        [this](int code) {
            readLines();
            Q_EMIT stopped(QStringLiteral("%1 ended with %2").arg(m_program).arg(code));
        });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT stopped(m_process.errorString());
    });
}

RuntimeProcess::~RuntimeProcess()
{
    m_process.disconnect(this);
    m_process.closeWriteChannel();
    m_process.waitForFinished();
}

void RuntimeProcess::start(int sdk)
{
    m_process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + m_program,
        {QString::number(sdk)});
}

void RuntimeProcess::send(const QJsonObject &line)
{
    m_process.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
}

void RuntimeProcess::readLines()
{
    while (m_process.canReadLine())
        Q_EMIT received(QJsonDocument::fromJson(m_process.readLine()).object());
}
