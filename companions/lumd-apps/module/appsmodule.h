// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "companions/lumd-apps/applist.h"
#include "companions/lumd-apps/apporder.h"
#include "companions/lumd-apps/installqueue.h"
#include "companions/lumd-apps/lumdservice.h"
#include "companions/lumd-apps/runtimecontrol.h"

/// The QML module com.tovra.lumd.apps: the singletons Runtime, Apps (in the order of AppOrder),
/// AppList and Installer. It must outlive the engines that import it, and there is one a process.
class AppsModule
{
public:
    AppsModule();

    RuntimeControl &runtime() { return m_runtime; }
    AppList &apps() { return m_apps; }
    InstallQueue &installer() { return m_installer; }

private:
    LumdService m_service;
    RuntimeControl m_runtime{&m_service};
    AppList m_apps{&m_service};
    AppOrder m_order{&m_apps};
    InstallQueue m_installer{&m_service};
};
