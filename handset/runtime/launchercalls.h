// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "appcatalogue.h"
#include "launcherchannel.h"

/// What the runtime says to "alien.launcher".
namespace LauncherCalls {

/// The interface of "alien.launcher".
QString interface();

/// A launcher exists.
LauncherCall added(const AndroidApp &app, const AndroidApp::Launcher &launcher, bool oneway);
/// The list of launchers is complete.
LauncherCall complete(bool oneway);
/// A package was removed. A null name goes out as Android's null.
LauncherCall removed(const QString &package, bool oneway);
/// Any code with any bytes behind the header of any interface.
LauncherCall raw(quint32 code, const QString &interface, const QByteArray &data, bool oneway);

} // namespace LauncherCalls
