// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "clients/alienactivitymanager.h"
#include "clients/aliendeviceidle.h"
#include "clients/alienintent.h"
#include "clients/alienpackagemanager.h"
#include "clients/alienstoragestatsmanager.h"
#include "clients/alientimezonemonitor.h"
#include "clients/appsizeinfo.h"
#include "daemon/datausage.h"
#include "daemon/monitor.h"
#include "daemon/packagemod.h"
#include "daemon/silentruntime.h"
#include "daemon/upgradenotices.h"
#include "daemon/windowwait.h"
#include "launcher/apkmanager.h"
#include "launcher/desktopmanager.h"

#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>

class ApkConfig;
class QDir;
class ServiceController;
struct Caller;
struct FileRights;

/// The daemon: owns all that speaks to the Android runtime and carries out what the system
/// bus asks for, on the main thread. Its bus face is LumDaemonAdaptor. Requests that the
/// stopped runtime cannot take are kept, in memory, until it is up.
class LumDaemon : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    /// Claims the bus name, and ends the process with the exit code 1 when it cannot.
    /// @p config is not owned and must outlive the daemon.
    explicit LumDaemon(ApkConfig *config);

    /// Whether the runtime still owes an answer to a call that nobody waits for.
    bool hasUnansweredCall() const;

Q_SIGNALS:
    // Part of the bus interface. The first four are never emitted.
    void installPackage(const QString &filename);
    void uninstallPackage(const QString &filename);
    void installPackageFromRPM(const QString &filename);
    void uninstallPackageFromRPM(const QString &filename);
    void appStartOnBootupChanged(const QString &package, bool autoStartAllowed);

public Q_SLOTS:
    // Install and remove. True when the request was accepted, which is not yet success.
    bool installFile(const QString &filename, PackageSource source = SourceDefault);
    bool installPreloadFile(const QString &filename);
    bool installPartnerSpaceFile(const QString &filename);
    bool removeFile(const QString &filename);

    void controlService(bool start);
    void controlServiceAutostart(bool enable);

    /// Passes @p mod to the runtime's package manager, connected or not.
    void triggerPackageMod(const PackageMod &mod);

    /// Bytes, as du counts them, whether the runtime is up or not. 0 when it cannot tell. The
    /// caller on the bus is answered later; called from inside it counts for nobody, and gives 0.
    quint64 getAndroidAppDataUsage();

    // App management. Without the runtime these do nothing and answer with a default.
    bool getAppStartOnBootup(const QString &packageName);
    void setAppStartOnBootup(const QString &packageName, bool autoStartAllowed);
    AppSizeInfo getAppSize(const QString &packageName);
    void deleteAppCacheFiles(const QString &packageName);
    void clearAppUserData(const QString &packageName);
    void forceStopApp(const QString &packageName);

    // Launching.
    void launchIntent(const QString &action, const QString &data, const QString &type,
        const QString &packageName, const QString &className, const QString &category,
        const QVariantMap &extras = QVariantMap());
    void launchApp(const QString &packageName);
    void openAppSettings(const QString &packageName);
    void viewLicenses();

    /// Tells the home screen, launcher by launcher, that the runtime is being upgraded. The
    /// caller on the bus is answered when that is done.
    void notifyRuntimeUpgrade(bool upgrading);

    /// Shows the user a short message.
    void publishNotification(const QString &text, bool isWarning);

private Q_SLOTS:
    void onNotifyInstallationResult(
        bool success, const QString &packageName, const QString &message);
    void onNotifyUninstallationResult(bool success, const QString &packageName);
    void onAlienServiceAvailable(bool connected);
    void onPackageManagerAvailable(bool connected);
    void onActivityManagerAvailable(bool connected);

private:
    /// Answers the call on the bus that it was made for.
    using Reply = std::function<void(const QVariantList &results)>;

    void connectMembers();
    void connectMonitor();
    void prepareFolders();
    void claimBus();

    /// Who makes the bus call that is being answered; nothing for a call from inside.
    std::optional<Caller> caller() const;
    static bool isPackageChangeAllowed(const std::optional<Caller> &caller);

    static void offerRuntime();
    static bool stageFile(
        const QString &filename, const std::optional<FileRights> &rights, const QString &target);
    /// The folder that apk files are staged in, made fit for use. What could not be done is
    /// logged.
    QDir incomingDir() const;
    QString stripDataRoot(const QString &path) const;
    void uninstallRpmPackage(const QString &filename) const;

    /// Asks for the runtime to be started when it is down or going down. Does not wait.
    void startServiceIfNeeded();
    bool isReadyForPackageMods();
    void processDeferredMods();

    /// For those who follow: that a request was kept, and what has become of the monitor's
    /// properties.
    void tellQueued(const char *kind, const QString &what);
    void updateMonitor();

    /// For the call that is being served, which is answered when the result is called. That
    /// does nothing for a call from inside the process.
    Reply replyLater() const;

    void drainDeferredLaunches();
    void queueIntent(const AlienIntent &intent, const QString &what);
    void launchQueuedIntents();
    void notifyLaunchPending(const QString &package);

    // In this order they connect and hear of the runtime's state, and in this order the runtime
    // gets their answers and calls.
    ApkManager m_apkManager;
    AlienPackageManager m_packageManager;
    AlienActivityManager m_activityManager;
    AlienStorageStatsManager m_storageStatsManager;
    AlienTimezoneMonitor m_tzMonitor;
    AlienDeviceIdle m_deviceIdle;
    DesktopManager m_desktopManager;
    Monitor m_monitor{m_desktopManager};
    ServiceController *m_serviceController;
    QStringList m_spareList; // unused; it keeps its place among the members
    ApkConfig *m_config;
    QList<PackageMod> m_deferredMods;
    QStringList m_deferredLaunches;
    QList<AlienIntent> m_intentQueue;
    // From the launch of an intent until its window is there: no other may overtake it.
    bool m_intentQueueBusy = false;
    DataUsage m_dataUsage;
    UpgradeNotices m_upgradeNotices{m_desktopManager};
    WindowWait m_windowWait;
    SilentRuntime m_silentRuntime{m_packageManager};
};
