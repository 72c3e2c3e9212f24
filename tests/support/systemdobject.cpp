// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/systemdobject.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace {

const QString ServiceName = QStringLiteral("org.freedesktop.systemd1");
const QString ManagerPath = QStringLiteral("/org/freedesktop/systemd1");
const QString ManagerInterface = QStringLiteral("org.freedesktop.systemd1.Manager");
const QString UnitInterface = QStringLiteral("org.freedesktop.systemd1.Unit");
const QString PropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString UnitName = QStringLiteral("aliendalvik.service");
const QString ActiveState = QStringLiteral("ActiveState");
const QString SubState = QStringLiteral("SubState");
const QString UnitFileState = QStringLiteral("UnitFileState");

} // namespace

/// One entry of what EnableUnitFiles and DisableUnitFiles answer, D-Bus (sss).
struct UnitFileChange
{
    QString type;
    QString file;
    QString destination;
};
Q_DECLARE_METATYPE(UnitFileChange)

QDBusArgument &operator<<(QDBusArgument &argument, const UnitFileChange &change)
{
    argument.beginStructure();
    argument << change.type << change.file << change.destination;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, UnitFileChange &change)
{
    argument.beginStructure();
    argument >> change.type >> change.file >> change.destination;
    argument.endStructure();
    return argument;
}

SystemdObject::SystemdObject()
    : bus(QDBusConnection::connectToBus(
          QDBusConnection::SystemBus, QStringLiteral("mocksystemd-%1").arg(quintptr(this))))
{
    qDBusRegisterMetaType<UnitFileChange>();
    qDBusRegisterMetaType<QList<UnitFileChange>>();
    unit = {{ActiveState, QStringLiteral("inactive")}, {SubState, QStringLiteral("dead")},
        {UnitFileState, QStringLiteral("disabled")}, {QStringLiteral("Id"), UnitName}};
    // In this order: Qt makes a child of the object when it is registered.
    const bool hasObject = bus.registerVirtualObject(ManagerPath, this, QDBusConnection::SubPath);
    moveToThread(&thread);
    thread.start();
    if (!hasObject || !bus.registerService(ServiceName))
        qFatal("mock systemd: %s", qPrintable(bus.lastError().message()));
}

SystemdObject::~SystemdObject()
{
    bus.unregisterService(ServiceName);
    bus.unregisterObject(ManagerPath, QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus(bus.name());
    thread.quit();
    thread.wait();
}

QString SystemdObject::introspect(const QString &path) const
{
    if (path != ManagerPath)
        return {};
    return QString::fromLatin1(R"xml(
  <interface name="org.freedesktop.systemd1.Manager">
    <method name="Subscribe"/>
    <method name="LoadUnit"><arg type="s"/><arg type="o" direction="out"/></method>
    <method name="StartUnit"><arg type="s"/><arg type="s"/><arg type="o" direction="out"/></method>
    <method name="StopUnit"><arg type="s"/><arg type="s"/><arg type="o" direction="out"/></method>
    <method name="EnableUnitFiles"><arg type="as"/><arg type="b"/><arg type="b"/>
      <arg type="b" direction="out"/><arg type="a(sss)" direction="out"/></method>
    <method name="DisableUnitFiles"><arg type="as"/><arg type="b"/>
      <arg type="a(sss)" direction="out"/></method>
  </interface>
)xml");
}

bool SystemdObject::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (message.interface() != ManagerInterface && message.interface() != PropertiesInterface)
        return false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        calls.append({message.member(), message.arguments()});
    }
    // Before the answer: the next request may come in on another thread as soon as it is out.
    follow(message.member());
    const std::lock_guard<std::mutex> lock(mutex);
    connection.send(answer(message));
    called.notify_all();
    return true;
}

QDBusMessage SystemdObject::answer(const QDBusMessage &message)
{
    const QString method = message.member();
    const QDBusObjectPath job(QStringLiteral("/org/freedesktop/systemd1/job/1"));
    const auto changes = QVariant::fromValue(QList<UnitFileChange>());
    const QDBusMessage refused =
        message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("Access denied"));
    if (method == QLatin1String("Subscribe")) {
        isSubscribed = isSubscribed || !subscribeFails;
        return subscribeFails ? refused : message.createReply();
    }
    if (method == QLatin1String("LoadUnit"))
        return loadUnit(message);
    if (method == QLatin1String("StartUnit") || method == QLatin1String("StopUnit"))
        return message.createReply(QVariant::fromValue(job));
    if (method == QLatin1String("EnableUnitFiles"))
        return message.createReply({true, changes});
    if (method == QLatin1String("DisableUnitFiles"))
        return message.createReply(changes);
    if (method == QLatin1String("GetAll") && message.path() == MockSystemd::unitPath())
        return getAllFails ? refused : message.createReply(QVariant(unit));
    if (method == QLatin1String("Get") && message.path() == MockSystemd::unitPath())
        return message.createReply(
            QVariant::fromValue(QDBusVariant(unit.value(message.arguments().value(1).toString()))));
    return message.createErrorReply(QDBusError::UnknownMethod, method);
}

QDBusMessage SystemdObject::loadUnit(const QDBusMessage &message) const
{
    if (!loadError.isNull())
        return message.createErrorReply(
            QStringLiteral("org.freedesktop.systemd1.NoSuchUnit"), loadError);
    return message.createReply(QVariant::fromValue(QDBusObjectPath(MockSystemd::unitPath())));
}

void SystemdObject::follow(const QString &method)
{
    std::unique_lock<std::mutex> lock(mutex);
    const bool follows = followsRequests;
    const QVariantMap change = changeDuringGetAll;
    lock.unlock();
    if (method == QLatin1String("GetAll") && !change.isEmpty())
        emitChanged(UnitInterface, change, {});
    if (follows)
        followRequest(method);
}

void SystemdObject::followRequest(const QString &method)
{
    if (method == QLatin1String("StartUnit")) {
        change({{ActiveState, QStringLiteral("activating")}, {SubState, QStringLiteral("start")}},
            true);
        change(
            {{ActiveState, QStringLiteral("active")}, {SubState, QStringLiteral("running")}}, true);
    } else if (method == QLatin1String("StopUnit")) {
        change({{ActiveState, QStringLiteral("deactivating")},
                   {SubState, QStringLiteral("stop-sigterm")}},
            true);
        change(
            {{ActiveState, QStringLiteral("inactive")}, {SubState, QStringLiteral("dead")}}, true);
    }
}

void SystemdObject::change(const QVariantMap &values, bool announce)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            unit.insert(it.key(), it.value());
    }
    if (announce)
        emitChanged(UnitInterface, values, {});
}

void SystemdObject::emitChanged(const QString &interface, const QVariantMap &changed,
    const QStringList &invalidated, const QString &path)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!isSubscribed)
        return;
    QDBusMessage signal =
        QDBusMessage::createSignal(path, PropertiesInterface, QStringLiteral("PropertiesChanged"));
    signal.setArguments({interface, changed, invalidated});
    bus.send(signal);
}
