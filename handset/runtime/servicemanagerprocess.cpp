// SPDX-License-Identifier: BSD-3-Clause
#include "servicemanagerprocess.h"

#include <QCoreApplication>
#include <QJsonDocument>

ServiceManagerProcess::ServiceManagerProcess()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(
        &m_process, &QProcess::readyReadStandardOutput, this, &ServiceManagerProcess::readLines);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        [this](int code) {
            readLines();
            Q_EMIT stopped(QStringLiteral("service manager ended with %1").arg(code));
        });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT stopped(m_process.errorString());
    });
}

ServiceManagerProcess::~ServiceManagerProcess()
{
    m_process.disconnect(this);
    m_process.closeWriteChannel();
    m_process.waitForFinished();
}

void ServiceManagerProcess::start(int sdk)
{
    m_process.start(QCoreApplication::applicationDirPath() + QLatin1String("/alien-servicemanager"),
        {QString::number(sdk)});
}

void ServiceManagerProcess::readLines()
{
    while (m_process.canReadLine())
        Q_EMIT eventReceived(QJsonDocument::fromJson(m_process.readLine()).object());
}
