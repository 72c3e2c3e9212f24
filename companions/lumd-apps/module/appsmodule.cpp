// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/appsmodule.h"

#include <qqml.h>

AppsModule::AppsModule()
{
    constexpr char uri[] = "com.tovra.lumd.apps";
    constexpr int major = 1;
    constexpr int minor = 0;
    qmlRegisterSingletonInstance(uri, major, minor, "Runtime", &m_runtime);
    qmlRegisterSingletonInstance(uri, major, minor, "AppList", &m_apps);
    qmlRegisterSingletonInstance(uri, major, minor, "Apps", &m_order);
    qmlRegisterSingletonInstance(uri, major, minor, "Installer", &m_installer);
    qmlRegisterUncreatableType<App>(
        uri, major, minor, "App", QStringLiteral("Apps come from the list"));
}
