// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/datausage.h"

#include "daemon/logging.h"

#include <QProcess>

#include <chrono>
#include <optional>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto timeForDu = 30s;

/// Nothing without a first part.
std::optional<quint64> firstNumber(const QByteArray &output)
{
    const QStringList parts = QString::fromUtf8(output).split(QLatin1Char('\t'));
    if (parts.size() < 2)
        return std::nullopt;
    return parts.first().toULongLong();
}

} // namespace

DataUsage::DataUsage(QObject *parent) : QObject(parent), m_deadline(this)
{
    m_deadline.setTimerType(Qt::PreciseTimer);
    m_deadline.setInterval(timeForDu);
    connect(&m_deadline, &QTimer::timeout, this, &DataUsage::onDeadline);
}

void DataUsage::ask(const QString &folder, const Answer &answer)
{
    m_answers.push_back(answer);
    if (m_answers.size() > 1)
        return;
    m_folder = folder;
    m_deadline.start();
    if (!m_du)
        start();
}

void DataUsage::start()
{
    m_du = new QProcess(this);
    connect(m_du, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        &DataUsage::onOver);
    connect(m_du, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            onOver();
    });
    m_du->start(
        QStringLiteral("/usr/bin/du"), {QStringLiteral("-sxb"), m_folder}, QIODevice::ReadOnly);
}

void DataUsage::onOver()
{
    QProcess *const du = std::exchange(m_du, nullptr);
    du->deleteLater();
    if (!std::exchange(m_isEnded, false))
        answerAll(du);
    else if (!m_answers.empty())
        start();
}

void DataUsage::onDeadline()
{
    QProcess *const du = m_isEnded ? nullptr : m_du;
    if (du)
        du->waitForReadyRead(0); // what it has printed by now counts
    if (m_answers.empty())
        return; // it was over
    if (du) {
        m_isEnded = true;
        du->kill();
    }
    answerAll(du);
}

void DataUsage::answerAll(QProcess *du)
{
    m_deadline.stop();
    std::optional<quint64> bytes;
    if (du && du->exitStatus() == QProcess::NormalExit)
        bytes = firstNumber(du->readAllStandardOutput());
    if (!bytes)
        qCWarning(daemonLog) << "Could not determine android app data usage";
    const std::vector<Answer> answers = std::exchange(m_answers, {});
    for (const Answer &answer : answers)
        answer(bytes.value_or(0));
}
