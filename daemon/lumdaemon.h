// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "launcher/apkmanager.h"
#include "launcher/desktopmanager.h"

#include <QDBusContext>
#include <QObject>
#include <QStringList>

class ApkConfig;
class QDir;
class ServiceController;

/// The daemon: owns all that speaks to the Android runtime and carries out what the system
/// bus asks for, on the main thread. Its bus face is LumDaemonAdaptor.
class LumDaemon : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    /// Claims the bus name, and ends the process with the exit code 1 when it cannot.
    /// @p config is not owned and must outlive the daemon.
    explicit LumDaemon(ApkConfig *config);

Q_SIGNALS:
    // Part of the bus interface. The first four are never emitted.
    void installPackage(const QString &filename);
    void uninstallPackage(const QString &filename);
    void installPackageFromRPM(const QString &filename);
    void uninstallPackageFromRPM(const QString &filename);
    void appStartOnBootupChanged(const QString &package, bool autoStartAllowed);

public Q_SLOTS:
    void controlService(bool start);
    void controlServiceAutostart(bool enable);

private:
    void connectMembers();
    void prepareFolders();
    void claimBus();

    /// The folder that apk files are staged in, made fit for use. What could not be done is
    /// logged.
    QDir incomingDir();

    ApkManager m_apkManager;
    DesktopManager m_desktopManager;
    ServiceController *m_serviceController;
    QStringList m_spareList;
    ApkConfig *m_config;
};
