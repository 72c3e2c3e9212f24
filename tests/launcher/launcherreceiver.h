// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "launcher/apkmanager.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/logcapture.h"
#include "tests/support/mocksystemd.h"
#include "tests/support/privatebus.h"

#include <QStringList>
#include <QVector>

/// The world in which an ApkManager is published as soon as it is made: a system bus with a
/// systemd whose runtime unit is active.
class ActiveRuntime
{
public:
    ActiveRuntime();

private:
    PrivateBus m_bus;
    MockSystemd m_systemd;
};

/// An ApkManager, with what it emitted.
class LauncherReceiver
{
public:
    LauncherReceiver();

    /// "alien.applications.IAlienNativeLauncherService"
    static QString interfaceName();
    /// The payload of the transaction that announces a launcher.
    static QByteArray announcement(const ApkLauncher &launcher);
    /// The lines of the category of launchers.
    static QStringList lines(const LogCapture &log);

    /// Calls the manager as the runtime does. The status is 77 before the call.
    FakeBinder::Answer call(quint32 code, const QByteArray &payload = {},
        const QString &interface = interfaceName(), quint32 flags = 0) const;
    int signalCount() const { return added.size() + removed.size() + completed; }

    ApkManager manager;
    QVector<ApkLauncher> added;
    QStringList removed;
    int completed = 0;
};
