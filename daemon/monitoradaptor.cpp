// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/monitoradaptor.h"

MonitorAdaptor::MonitorAdaptor(Monitor *monitor) : QDBusAbstractAdaptor(monitor), m_monitor(monitor)
{
}

ListedApps MonitorAdaptor::ListApps() const
{
    return m_monitor->listApps();
}
