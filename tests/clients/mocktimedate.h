// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QThread>
#include <QVariantMap>

#include <mutex>

/// org.freedesktop.timedate1 on the private system bus. It answers in a thread of its own, so
/// that it serves the blocking calls of an object in the test's thread. All operations may be
/// called from any thread.
class MockTimedate : public QDBusVirtualObject
{
public:
    explicit MockTimedate(const QString &zone);
    ~MockTimedate() override;
    Q_DISABLE_COPY(MockTimedate)

    /// Sets the zone and announces it as systemd does.
    void setZone(const QString &zone);
    /// Announces a change of any property of any object. Returns when the bus has passed it on.
    void announce(const QString &interface, const QVariantMap &changed,
        const QStringList &invalidated = {}, const QString &path = objectPath());
    static QString objectPath();
    /// Sets the zone and announces that it changed, without its value.
    void invalidateZone(const QString &zone);
    /// The next read is answered with the zone of now, behind the announcement of this one.
    void changeDuringNextRead(const QString &zone);
    /// Every read is answered with an error.
    void failReads();
    /// How often the zone was read.
    int reads() const;

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    void sendChange(const QString &interface, const QVariantMap &changed,
        const QStringList &invalidated = {}, const QString &path = objectPath());

    mutable std::mutex m_mutex;
    QDBusConnection m_bus;
    QString m_zone;
    QString m_nextZone;
    bool m_readsFail = false;
    int m_reads = 0;
    QThread m_thread;
};
