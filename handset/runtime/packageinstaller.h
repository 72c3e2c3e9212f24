// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "appcatalogue.h"
#include "installresult.h"
#include "launcherchannel.h"

#include <QObject>

#include <functional>
#include <memory>

class EventLog;
class WindowList;

/// Installs, deletes and clears apps, and tells observers how that went. Like Android's, it
/// works after the request has been answered.
class PackageInstaller : public QObject
{
    Q_OBJECT

public:
    using Observer = std::shared_ptr<GBinderRemoteObject>;

    struct Environment
    {
        int sdk;
        QString dataRoot; ///< where Android's / begins for the paths of apks
        AppCatalogue *apps;
        WindowList *windows;
        LauncherChannel *launcher;
        EventLog *log;
    };

    /// Until a request is carried out, in milliseconds.
    struct Delays
    {
        int install = 0; ///< and removal
        int clear = 300;
    };

    PackageInstaller(const Environment &environment, const Delays &delays);
    void setClearDelay(int milliseconds) { m_delays.clear = milliseconds; }

    /// @param path of the apk, as it is called inside Android.
    /// @param observer an IPackageInstallObserver2, or null.
    void install(const QString &path, const Observer &observer);
    /// @param observer an IPackageDeleteObserver, or null.
    void remove(const QString &package, const Observer &observer);
    /// @param observer an IPackageDataObserver, or null.
    void clearCache(const QString &package, const Observer &observer);
    /// Ends the app, too.
    void clearData(const QString &package, const Observer &observer);

private:
    InstallResult readApk(const QString &path, AndroidApp *app) const;
    void carryOutInstall(const QString &path, const Observer &observer);
    void carryOutRemove(const QString &package, const Observer &observer);
    void clear(const QString &package, bool cacheAlone, const Observer &observer);
    void carryOutClear(const QString &package, bool cacheAlone, const Observer &observer);
    /// Calls "alien.launcher", where it is registered, and then goes on.
    void announce(const QVector<LauncherCall> &calls, const std::function<void()> &done);
    void tell(GBinderRemoteObject *observer, const QString &interface, quint32 code,
        const QByteArray &arguments, QJsonObject record);

    const Environment m_environment;
    Delays m_delays;
};
