// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/windowwait.h"

#include "binder/alienbindertransaction.h"
#include "daemon/logging.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {

// An extension of the runtime's SurfaceFlinger: whether a window of a package exists.
constexpr quint32 hasWindowCode = 103;
constexpr int maximumAttempts = 10;
constexpr auto pauseAfterAnAttempt = 500ms;
constexpr auto longestWait = 5000ms;
constexpr long maximumUnanswered = 4;

} // namespace

WindowWait::WindowWait() : m_unanswered(std::make_shared<char>())
{
    for (QTimer *const timer : {&m_pause, &m_deadline}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
    }
    m_pause.setInterval(pauseAfterAnAttempt);
    m_deadline.setInterval(longestWait);
    connect(&m_pause, &QTimer::timeout, this, &WindowWait::onPauseOver);
    connect(&m_deadline, &QTimer::timeout, this, &WindowWait::end);
}

WindowWait::~WindowWait()
{
    letGo();
}

void WindowWait::start(const QString &package)
{
    m_package = package;
    m_attempts = 0;
    m_deadline.start();
    m_surfaceFlinger = std::make_unique<AlienBinderConnection>(
        "SurfaceFlinger", "android.ui.ISurfaceComposer", false, nullptr);
    ask();
}

bool WindowWait::hasUnansweredCall() const
{
    return m_unanswered.use_count() > 1;
}

void WindowWait::ask()
{
    ++m_attempts;
    const bool isStuck = m_unanswered.use_count() > maximumUnanswered;
    m_question = isStuck ? nullptr : m_surfaceFlinger->transaction(hasWindowCode, false);
    if (!m_question) {
        m_pause.start();
        return;
    }
    connect(m_question, &AlienBinderTransaction::finished, this, &WindowWait::onAnswer);
    m_question->inputParcel()->writeString(m_package);
    if (!m_question->start(m_unanswered))
        m_pause.start();
}

void WindowWait::onAnswer(qint32 status)
{
    if (status == 0 && m_question->outputParcel()->readBool()) {
        end();
        return;
    }
    if (status == 0)
        qCDebug(daemonLog) << "Window for" << m_package << "not yet found. Sleeping 500ms";
    m_pause.start();
}

void WindowWait::onPauseOver()
{
    if (m_attempts < maximumAttempts)
        ask();
    else
        end();
}

void WindowWait::end()
{
    letGo();
    Q_EMIT finished();
}

void WindowWait::letGo()
{
    m_pause.stop();
    m_deadline.stop();
    // What the link's end does to a call that is out is no answer any more.
    if (m_question)
        m_question->disconnect(this);
    m_question = nullptr;
    m_surfaceFlinger.reset();
}
