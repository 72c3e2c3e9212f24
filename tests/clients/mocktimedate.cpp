// SPDX-License-Identifier: BSD-3-Clause
#include "tests/clients/mocktimedate.h"

#include <QDBusConnectionInterface>
#include <QDBusVariant>

#include <utility>

namespace {

const QString service = QStringLiteral("org.freedesktop.timedate1");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString timezoneProperty = QStringLiteral("Timezone");

} // namespace

MockTimedate::MockTimedate(const QString &zone)
    : m_bus(QDBusConnection::connectToBus(
          QDBusConnection::SystemBus, QStringLiteral("mocktimedate-%1").arg(quintptr(this)))),
      m_zone(zone)
{
    // In this order: Qt makes a child of the object when it is registered.
    const bool hasObject = m_bus.registerVirtualObject(objectPath(), this);
    moveToThread(&m_thread);
    m_thread.start();
    if (!hasObject || !m_bus.registerService(service))
        qFatal("mock timedate: %s", qPrintable(m_bus.lastError().message()));
}

MockTimedate::~MockTimedate()
{
    m_bus.unregisterService(service);
    m_bus.unregisterObject(objectPath());
    QDBusConnection::disconnectFromBus(m_bus.name());
    m_thread.quit();
    m_thread.wait();
}

void MockTimedate::setZone(const QString &zone)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_zone = zone;
    }
    announce(service, {{timezoneProperty, zone}});
}

void MockTimedate::invalidateZone(const QString &zone)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_zone = zone;
    }
    announce(service, {}, {timezoneProperty});
}

QString MockTimedate::objectPath()
{
    return QStringLiteral("/org/freedesktop/timedate1");
}

void MockTimedate::announce(const QString &interface, const QVariantMap &changed,
    const QStringList &invalidated, const QString &path)
{
    sendChange(interface, changed, invalidated, path);
    // An answer of the bus to the same connection tells that it has dealt with the signal.
    m_bus.interface()->isServiceRegistered(service);
}

void MockTimedate::changeDuringNextRead(const QString &zone)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_nextZone = zone;
}

void MockTimedate::failReads()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_readsFail = true;
}

int MockTimedate::reads() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_reads;
}

QString MockTimedate::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return {};
}

bool MockTimedate::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    const QVariantList property{service, timezoneProperty};
    if (message.interface() != propertiesInterface || message.member() != QLatin1String("Get")
        || message.arguments() != property)
        return false;
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_reads;
    if (!m_nextZone.isNull())
        sendChange(service, {{timezoneProperty, m_nextZone}});
    connection.send(m_readsFail
            ? message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("Access denied"))
            : message.createReply(QVariant::fromValue(QDBusVariant(m_zone))));
    if (!m_nextZone.isNull())
        m_zone = std::exchange(m_nextZone, QString());
    return true;
}

void MockTimedate::sendChange(const QString &interface, const QVariantMap &changed,
    const QStringList &invalidated, const QString &path)
{
    QDBusMessage signal =
        QDBusMessage::createSignal(path, propertiesInterface, QStringLiteral("PropertiesChanged"));
    signal.setArguments({interface, changed, invalidated});
    m_bus.send(signal);
}
