// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/androidapps.h"
#include "client/clienterror.h"
#include "client/daemonstate.h"

#include <QObject>
#include <QVariantMap>

#include <chrono>
#include <memory>
#include <optional>

class BusConnection;
struct LumdSignals;

/// lumd's name on the bus, which its first interface has too.
constexpr char lumdService[] = "com.tovra.lumd";

/// Bytes that an app takes up.
struct AppSize
{
    qint64 code = 0;
    qint64 data = 0; ///< without the cache
    qint64 cache = 0;

    /// Not so in an answer of a lumd that could not ask Android: -1 for one that refused, three
    /// zeros for one that is down.
    bool isKnown() const { return code >= 0 && (code != 0 || data != 0 || cache != 0); }
};

/// An Android intent that starts an activity; an empty field is left out.
struct AndroidIntent
{
    QString action; ///< goes out even when it is empty
    QString data; ///< a URL, or an absolute path of a file
    QString type; ///< a MIME type
    QString package;
    QString className; ///< counts only with a package
    QString category;
    QVariantMap extras; ///< of bool, int, qlonglong, double and QString; all else is an error
};

/// lumd on the system bus, for a program with a Qt event loop. No operation blocks. The result
/// comes later from the event loop, within the time limit, and never after this object's end.
/// docs/dbus-api.md says what the operations do. Texts that come back may be an app's own and hold
/// anything: see shownName().
class LumdClient : public QObject
{
    Q_OBJECT

public:
    /// 60 seconds; lumd serves one call after the other.
    static constexpr std::chrono::milliseconds usualTimeLimit = std::chrono::minutes(1);

    explicit LumdClient(QObject *parent = nullptr);
    ~LumdClient() override;

    /// For the calls that follow.
    void setTimeLimit(std::chrono::milliseconds limit) { m_timeLimit = limit; }

    /// What lumd tells of itself and the runtime, once.
    void fetchState(const Done<DaemonState> &done);
    /// The apps that have launchers, in no order; also while the runtime is down.
    void listApps(const Done<QVector<AndroidApp>> &done);

    /// Begins to listen to what happens; the signals of this object come from now on, also when
    /// lumd or the bus comes later or restarts. `done` tells whether lumd is there, before any
    /// signal. Once in this object's life.
    void watch(const Done<Nothing> &done);

    /// True means accepted; false that this caller may not install, or that the file could not be
    /// taken. The path is absolute.
    void installFile(const QString &path, const Done<bool> &done);
    /// True means accepted; false that this caller may not remove apps.
    void removeApp(const QString &package, const Done<bool> &done);

    /// Asks for the runtime's start or stop, and does not wait for it.
    void runRuntime(bool run, const Done<Nothing> &done);
    /// The runtime's start on boot, as systemd has it and as it shall be.
    void fetchRuntimeOnBoot(const Done<bool> &done);
    void setRuntimeOnBoot(bool enable, const Done<Nothing> &done);

    /// The bytes of all apps' data, 0 when that cannot be told. lumd may take 30 seconds for it.
    void fetchDataUsage(const Done<quint64> &done);
    void fetchSize(const QString &package, const Done<AppSize> &done);
    void fetchStartOnBoot(const QString &package, const Done<bool> &done);

    /// These do nothing while the runtime is down.
    void setStartOnBoot(const QString &package, bool allow, const Done<Nothing> &done);
    void clearCache(const QString &package, const Done<Nothing> &done);
    void clearData(const QString &package, const Done<Nothing> &done);
    void stopApp(const QString &package, const Done<Nothing> &done);

    /// These start the runtime when it is down.
    void launchApp(const QString &package, const Done<Nothing> &done);
    void launchIntent(const AndroidIntent &intent, const Done<Nothing> &done);
    void openSettings(const QString &package, const Done<Nothing> &done);
    void showLicences(const Done<Nothing> &done);

Q_SIGNALS:
    /// lumd has come after watch() did not find it, or has gone, or has come anew.
    void daemonAppeared();
    void daemonVanished();

    /// The state when lumd is there, or has come, and after each change.
    void stateChanged(const DaemonState &state);
    /// `message` says why it failed, in the user's words or in Android's.
    void installFinished(const QString &package, bool success, const QString &message);
    void removeFinished(const QString &package, bool success);
    /// A request waits for the runtime: "install" (the path), "remove" (the package), "launch" (the
    /// desktop file), "intent" (its URI or action).
    void requestQueued(const QString &kind, const QString &what);
    void launcherChanged(const QString &package, const AndroidLauncher &launcher);
    void launcherGone(const QString &package, const QString &desktopFile);
    void packageRemoved(const QString &package);
    void listComplete();
    void startOnBootChanged(const QString &package, bool allowed);

private:
    friend struct LumdSignals;

    void listen();
    void onOwner(const QString &owner);
    void refreshState();

    std::unique_ptr<BusConnection> m_bus;
    std::chrono::milliseconds m_timeLimit = usualTimeLimit;
    QString m_owner; ///< who has lumd's name on the bus, while that is watched
    std::optional<DaemonState> m_state; ///< once lumd has told it
    Done<Nothing> m_watchDone; ///< until it has been told
};
