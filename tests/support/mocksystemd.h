// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <memory>

class SystemdObject;

/// org.freedesktop.systemd1 on the private system bus, with the one unit
/// "aliendalvik.service". It lives in a thread of its own, so that it answers the blocking
/// calls of an object in the test's thread. All operations may be called from any thread.
///
/// Like systemd it emits no signal before somebody has called Subscribe with success.
class MockSystemd
{
public:
    /// One call of a method of the manager, as it came.
    struct Call
    {
        QString method;
        QVariantList arguments;
    };

    /// On the bus that DBUS_SYSTEM_BUS_ADDRESS or the default address names. The unit starts
    /// out "inactive", "dead", "disabled".
    MockSystemd();
    ~MockSystemd();
    Q_DISABLE_COPY(MockSystemd)

    /// Sets ActiveState and SubState and announces both as systemd does.
    void setUnitState(const QString &active, const QString &sub);
    /// Sets UnitFileState and announces it with its value.
    void setUnitFileState(const QString &state);
    /// The same two without an announcement.
    void setUnitStateSilently(const QString &active, const QString &sub);
    void setUnitFileStateSilently(const QString &state);
    /// Takes a property out of what GetAll answers ("ActiveState").
    void removeUnitProperty(const QString &name);
    /// Emits PropertiesChanged, whatever the mock's state.
    void emitPropertiesChanged(const QString &interface, const QVariantMap &changed,
        const QStringList &invalidated = {}, const QString &path = unitPath());
    /// Each GetAll is answered behind the announcement of this state, with the state of before.
    void announceDuringGetAll(const QString &active, const QString &sub);

    /// LoadUnit answers with org.freedesktop.systemd1.NoSuchUnit and this text; a null text
    /// ends that.
    void failLoadUnit(const QString &message);
    void failGetAll(bool fail = true);
    void failSubscribe(bool fail = true);
    /// StartUnit makes the unit "activating" and then "active", StopUnit "deactivating" and
    /// then "inactive"; off at first.
    void setFollowsRequests(bool follows);

    /// True once Subscribe was called with success.
    bool isSubscribed() const;
    /// Calls of the manager so far, and GetAll of the unit, in order.
    QVector<Call> calls() const;
    /// The same as text: "LoadUnit(aliendalvik.service)",
    /// "EnableUnitFiles([aliendalvik.service], false, true)", "Subscribe()".
    QStringList callTexts() const;
    void clearCalls();
    /// Waits for a call of that method; false after the deadline in milliseconds.
    bool waitForCall(const QString &method, int deadline = 10000);

    static QString unitPath();

    /// Call on the main thread when the listeners of the tested object are connected. Qt holds
    /// back what arrives on a bus before the event loop has run, and then lets what comes just
    /// after overtake it; once this has returned, signals arrive in their order.
    static void settleListeners();

private:
    std::unique_ptr<SystemdObject> m_d;
};
