// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QVariantMap>

/// The values of ServiceController::serviceState() that decide anything.
namespace UnitState {

// ActiveState of org.freedesktop.systemd1(5)
constexpr char active[] = "active";
constexpr char activating[] = "activating";
constexpr char inactive[] = "inactive";
constexpr char deactivating[] = "deactivating";
/// The unit could not be loaded: no word of systemd's.
constexpr char invalid[] = "invalid";

} // namespace UnitState

/// The daemon's one view of the Android runtime's systemd unit: a mirror of its state, and
/// the four requests that change it. Lives on the main thread, until the process ends.
class ServiceController : public QObject
{
    Q_OBJECT
    /// The unit's ActiveState in systemd's words. "invalid" when the unit could not be
    /// loaded, empty when systemd did not tell.
    Q_PROPERTY(QString serviceState READ serviceState NOTIFY serviceStateChanged)
    /// Whether the unit's UnitFileState is "enabled". Any other state counts as not enabled.
    Q_PROPERTY(bool serviceEnabled READ serviceEnabled NOTIFY serviceEnabledChanged)

public:
    /// The process-wide object, made on the first call, which blocks while systemd answers.
    static ServiceController *instance();

    QString serviceState() const { return m_serviceState; }
    bool serviceEnabled() const { return m_serviceEnabled; }

    /// Asks systemd to start or stop the runtime, unless it already is in that state or on
    /// its way there. Does not wait; the outcome shows in serviceState() alone.
    void controlService(bool start);

    /// Asks systemd to enable or disable the unit at boot. Does not wait; the outcome shows
    /// in serviceEnabled() alone.
    void controlAutostart(bool enable);

Q_SIGNALS:
    void serviceStateChanged();
    void serviceEnabledChanged();

private Q_SLOTS:
    void onPropertiesChanged(
        const QString &interface, const QVariantMap &changed, const QStringList &invalidated);

private:
    ServiceController();

    QString m_unitPath;
    QString m_serviceState;
    bool m_serviceEnabled = false;
};
