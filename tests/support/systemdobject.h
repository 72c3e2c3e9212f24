// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/mocksystemd.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QThread>

#include <condition_variable>
#include <mutex>

/// The objects of org.freedesktop.systemd1 behind MockSystemd. It answers in a thread of its
/// own; the mutex guards what both sides use.
class SystemdObject : public QDBusVirtualObject
{
public:
    SystemdObject();
    ~SystemdObject() override;
    Q_DISABLE_COPY(SystemdObject)

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

    /// Changes the unit and announces what changed, if somebody subscribed.
    void change(const QVariantMap &values, bool announce);
    void emitChanged(const QString &interface, const QVariantMap &changed,
        const QStringList &invalidated, const QString &path = MockSystemd::unitPath());

    mutable std::mutex mutex;
    std::condition_variable called;
    QDBusConnection bus;
    QVector<MockSystemd::Call> calls;
    QVariantMap unit;
    QVariantMap changeDuringGetAll;
    QString loadError;
    bool getAllFails = false;
    bool subscribeFails = false;
    bool isSubscribed = false;
    bool followsRequests = false;
    QThread thread;

private:
    QDBusMessage answer(const QDBusMessage &message);
    QDBusMessage loadUnit(const QDBusMessage &message) const;
    void follow(const QString &method);
    void followRequest(const QString &method);
};
