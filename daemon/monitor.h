// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusContext>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QObject>
#include <QStringList>
#include <QVector>

#include <optional>

class DesktopManager;
class QDBusArgument;

/// A launcher as Monitor1 lists it. Travels over D-Bus as (ssssb), in this order.
struct ListedLauncher
{
    QString desktopFile;
    QString name;
    QString icon;
    QString version;
    bool hidden = false;
};

QDBusArgument &operator<<(QDBusArgument &argument, const ListedLauncher &launcher);
const QDBusArgument &operator>>(const QDBusArgument &argument, ListedLauncher &launcher);

/// By package.
using ListedApps = QMap<QString, QVector<ListedLauncher>>;

Q_DECLARE_METATYPE(ListedLauncher)
Q_DECLARE_METATYPE(ListedApps)

/// What programs can follow on the system bus: the object of com.tovra.lumd.Monitor1. It is told
/// of what happens and passes it on; it keeps nobody waiting and changes nothing. Apps choose
/// much of the text, so each is made fit for the bus and no longer than 8192 characters.
class Monitor : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    /// The values of the properties that change.
    struct State
    {
        QString runtimeState; ///< the unit's, in systemd's words
        bool isReady; ///< package changes are handed over at once
        uint pendingChanges; ///< installs and removals that wait
        uint pendingLaunches; ///< launches and intents that wait
        qint32 sdkLevel; ///< 0 when it is not known
    };

    static constexpr char objectPath[] = "/com/tovra/lumd/monitor";

    /// @p desktopManager is not owned and must outlive this object.
    explicit Monitor(const DesktopManager &desktopManager);

    const State &state() const { return m_state; }
    /// Tells of what differs from the state before. The first is no change.
    void setState(const State &state);
    static QString version();

    /// All launchers that there are. An error for the caller, and none, when they are more than
    /// the bus would carry.
    ListedApps listApps() const;

    /// The runtime does not report what becomes of a removal, but announces what is gone: from
    /// now on that counts as the end of the removal of @p package.
    void awaitRemoval(const QString &package);
    /// What was asked of a runtime that has gone is not awaited any more.
    void forgetRemovals();

public Q_SLOTS:
    // A signal each.
    void tellInstallFinished(const QString &package, bool success, const QString &message);
    void tellRemoveFinished(const QString &package, bool success);
    void tellQueued(const QString &kind, const QString &what);
    void tellLauncherChanged(const QString &desktopPath, const QString &package,
        const QString &name, const QString &icon);
    void tellLauncherGone(const QString &desktopPath, const QString &package);
    void tellPackageRemoved(const QString &package);
    void tellListComplete();

private:
    const DesktopManager &m_desktopManager;
    State m_state = {};
    bool m_hasState = false;
    QStringList m_awaitedRemovals;
};
