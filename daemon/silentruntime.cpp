// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/silentruntime.h"

#include "binder/alienbinderconnection.h"
#include "daemon/logging.h"
#include "runtime/servicecontroller.h"

using namespace std::chrono_literals;

SilentRuntime::SilentRuntime(const AlienBinderConnection &service) : m_service(service)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(1min);
    connect(&m_timer, &QTimer::timeout, this, &SilentRuntime::warn);
    connect(&service, &AlienBinderConnection::connectionChanged, this, &SilentRuntime::update);
    connect(ServiceController::instance(), &ServiceController::serviceStateChanged, this,
        &SilentRuntime::update);
    update();
}

void SilentRuntime::update()
{
    const bool isUp =
        ServiceController::instance()->serviceState() == QLatin1String(UnitState::active);
    if (!isUp)
        m_hasWarned = false;
    if (!isUp || m_service.isConnected())
        m_timer.stop();
    else if (!m_hasWarned && !m_timer.isActive())
        m_timer.start();
}

void SilentRuntime::warn()
{
    m_hasWarned = true;
    qCWarning(daemonLog) << "Alien Dalvik has been up for a minute, and its services are not found:"
                            " is /etc/gbinder.d/lumd.conf there, and set for its Android release?";
}
