// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "appcatalogue.h"
#include "launcherchannel.h"

#include <QObject>

#include <functional>
#include <memory>

class EventLog;
class WindowList;

/// Installs and deletes apps, and tells observers how that went. Like Android's, it works
/// after the request has been answered.
class PackageInstaller : public QObject
{
    Q_OBJECT

public:
    using Observer = std::shared_ptr<GBinderRemoteObject>;

    struct Environment
    {
        AppCatalogue *apps;
        WindowList *windows;
        LauncherChannel *launcher;
        EventLog *log;
    };

    /// @param delay until a request is carried out, in milliseconds.
    PackageInstaller(const Environment &environment, int delay);

    /// @param path of the apk, as it is called inside Android.
    /// @param observer an IPackageInstallObserver2, or null.
    void install(const QString &path, const Observer &observer);
    /// @param observer an IPackageDeleteObserver, or null.
    void remove(const QString &package, const Observer &observer);

private:
    struct Result;

    Result readApk(const QString &path, AndroidApp *app) const;
    void carryOutInstall(const QString &path, const Observer &observer);
    void carryOutRemove(const QString &package, const Observer &observer);
    /// Calls "alien.launcher", where it is registered, and then goes on.
    void announce(const QVector<LauncherCall> &calls, const std::function<void()> &done);
    void tell(GBinderRemoteObject *observer, const char *interface, quint32 code,
        const std::function<void(GBinderWriter *)> &write, QJsonObject record);

    const Environment m_environment;
    const int m_delay;
};
