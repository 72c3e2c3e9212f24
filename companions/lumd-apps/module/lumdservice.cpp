// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/lumdservice.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QPointer>

#include <limits>

namespace {

constexpr QLatin1String service("com.tovra.lumd");
constexpr QLatin1String path("/com/tovra/lumd");
constexpr QLatin1String monitorPath("/com/tovra/lumd/monitor");
constexpr QLatin1String monitorInterface("com.tovra.lumd.Monitor1");
constexpr QLatin1String propertiesInterface("org.freedesktop.DBus.Properties");

constexpr int noDeadline = std::numeric_limits<int>::max();
constexpr int usualPatience = 5000; // milliseconds

LumdService::Presence presenceBehind(const QDBusMessage &error)
{
    switch (QDBusError(error).type()) {
    case QDBusError::AccessDenied:
        return LumdService::Presence::Refused;
    case QDBusError::ServiceUnknown:
    case QDBusError::NoReply:
    case QDBusError::Disconnected:
        return LumdService::Presence::Absent;
    default:
        return LumdService::Presence::Outdated;
    }
}

} // namespace

LumdService::LumdService(QObject *parent)
    : QObject(parent),
      m_bus(QDBusConnection::systemBus())
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(usualPatience);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_answersLate = true;
        Q_EMIT answersLateChanged();
    });
    if (!m_bus.isConnected()) {
        m_presence = Presence::Absent;
        return;
    }
    auto *const watcher = new QDBusServiceWatcher(service, m_bus,
        QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration,
        this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &LumdService::appear);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &LumdService::disappear);
    listen();
    appear();
}

void LumdService::listen()
{
    m_bus.connect(service, path, service, QStringLiteral("appStartOnBootupChanged"), this,
        SIGNAL(startOnBootChanged(QString, bool)));
    m_bus.connect(service, monitorPath, propertiesInterface, QStringLiteral("PropertiesChanged"),
        this, SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
    const auto relay = [this](const char *name, const char *signal) {
        m_bus.connect(
            service, monitorPath, monitorInterface, QString::fromLatin1(name), this, signal);
    };
    relay("InstallFinished", SIGNAL(installFinished(QString, bool, QString)));
    relay("RemoveFinished", SIGNAL(removeFinished(QString, bool)));
    relay("RequestQueued", SIGNAL(requestQueued(QString, QString)));
    relay("PackageRemoved", SIGNAL(packageRemoved(QString)));
    for (const char *const name : {"LauncherChanged", "LauncherGone", "PackageRemoved"})
        relay(name, SIGNAL(launchersChanged()));
}

void LumdService::appear()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        service, monitorPath, propertiesInterface, QStringLiteral("GetAll"));
    question << monitorInterface;
    send(question, Patience::Usual, this,
        [this](const QDBusMessage &reply) { onProperties(reply); });
}

void LumdService::disappear()
{
    m_properties.clear();
    setPresence(Presence::Absent);
}

void LumdService::onProperties(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ErrorMessage) {
        m_properties.clear();
        setPresence(presenceBehind(reply));
        return;
    }
    m_properties = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    setPresence(Presence::Present);
    Q_EMIT propertiesChanged();
}

void LumdService::onPropertiesChanged(
    const QString &interface, const QVariantMap &changed, const QStringList &invalidated)
{
    Q_UNUSED(invalidated)
    if (interface != monitorInterface)
        return;
    for (auto it = changed.cbegin(); it != changed.cend(); ++it)
        m_properties.insert(it.key(), it.value());
    Q_EMIT propertiesChanged();
}

void LumdService::setPresence(Presence presence)
{
    if (presence == m_presence)
        return;
    m_presence = presence;
    Q_EMIT presenceChanged();
}

void LumdService::call(const QString &method, const QVariantList &arguments, QObject *context,
    const Handler &handler)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, service, method);
    message.setArguments(arguments);
    send(message, Patience::Usual, context, handler);
}

void LumdService::callPatiently(
    const QString &method, QObject *context, const Handler &handler)
{
    send(QDBusMessage::createMethodCall(service, path, service, method), Patience::Long, context,
        handler);
}

void LumdService::callMonitor(const QString &method, QObject *context, const Handler &handler)
{
    send(QDBusMessage::createMethodCall(service, monitorPath, monitorInterface, method),
        Patience::Usual, context, handler);
}

void LumdService::send(
    const QDBusMessage &message, Patience patience, QObject *context, const Handler &handler)
{
    auto *const watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message, noDeadline), this);
    const bool counts = patience == Patience::Usual;
    if (counts)
        count(1);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this, watcher, counts, handler, isWanted = context != nullptr,
            guard = QPointer<QObject>(context)] {
            watcher->deleteLater();
            if (counts)
                count(-1);
            if (handler && (!isWanted || guard))
                handler(watcher->reply());
        });
}

void LumdService::count(int calls)
{
    m_pending += calls;
    if (m_pending > 0 && calls > 0) {
        if (!m_patience.isActive() && !m_answersLate)
            m_patience.start();
        return;
    }
    // It answers: whoever still waits does so anew.
    m_patience.stop();
    if (m_pending > 0)
        m_patience.start();
    if (m_answersLate) {
        m_answersLate = false;
        Q_EMIT answersLateChanged();
    }
}
