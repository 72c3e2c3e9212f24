// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/fakebinder.h"

#include "tests/support/fakegbinder/world.h"

namespace FakeBinder {

namespace {

void announce(Notice notice, const std::function<void()> &action)
{
    if (notice == Notice::Deferred)
        World::defer(action);
    else if (notice == Notice::Synchronous)
        action();
}

void callRegistrationHandlers(const QByteArray &name)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    const QList<gulong> ids = world.registrationHandlers.keys();
    for (const gulong id : ids) {
        const auto found = world.registrationHandlers.constFind(id);
        // A handler that was called before may have removed it.
        if (found == world.registrationHandlers.constEnd() || found->name != name)
            continue;
        const World::RegistrationHandler handler = *found;
        lock.unlock();
        handler.function(handler.manager, name.constData(), handler.userData);
        lock.lock();
    }
}

void callDeathHandlers(const RemoteObject *object)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    const QList<gulong> ids = world.deathHandlers.keys();
    for (const gulong id : ids) {
        const auto found = world.deathHandlers.constFind(id);
        if (found == world.deathHandlers.constEnd() || found->object != object
            || object->references == 0)
            continue;
        const World::DeathHandler handler = *found;
        lock.unlock();
        handler.function(reinterpret_cast<GBinderRemoteObject *>(handler.object), handler.userData);
        lock.lock();
    }
}

void kill(RemoteObject *object, Notice notice)
{
    if (!object)
        return;
    failCalls(object);
    announce(notice, [object] { callDeathHandlers(object); });
}

} // namespace

void setPresent(bool present)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.present = present;
}

void setProtocol(Protocol protocol)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.protocol = protocol;
}

void registerService(const QString &name, const Handler &handler, Notice notice)
{
    World &world = World::instance();
    {
        const std::lock_guard<std::mutex> lock(world.mutex);
        world.services.insert(name, world.make<RemoteObject>(name, world.nextServiceId++, handler));
    }
    notifyRegistration(name, notice);
}

void notifyRegistration(const QString &name, Notice notice)
{
    const QByteArray bytes = name.toUtf8();
    announce(notice, [bytes] { callRegistrationHandlers(bytes); });
}

void unregisterService(const QString &name)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.services.remove(name);
}

void killService(const QString &name, Notice notice)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    RemoteObject *object = world.services.take(name);
    if (object)
        object->isDead = true;
    lock.unlock();
    kill(object, notice);
}

quint32 newRemoteObject(const QString &label, const Handler &handler)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    return world.make<RemoteObject>(label, world.nextRemoteObjectId++, handler)->id;
}

void killRemoteObject(quint32 id, Notice notice)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    RemoteObject *object = world.remoteObject(id);
    if (object)
        object->isDead = true;
    lock.unlock();
    kill(object, notice);
}

void failClients(const QString &service, bool fail)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.failingClients.removeAll(service);
    if (fail)
        world.failingClients.append(service);
}

void failRequests(bool fail)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.requestsFail = fail;
}

void failLocalObjects(bool fail)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.localObjectsFail = fail;
}

void failServiceNames(bool fail)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.serviceNamesFail = fail;
}

QVector<PublishedService> published()
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    QVector<PublishedService> list;
    for (const ServiceName *entry : qAsConst(world.published)) {
        const LocalObject *object = world.localObject(entry->objectId);
        list.append({entry->label, object ? object->label : QString(), entry->objectId});
    }
    return list;
}

QVector<Request> requests()
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    return world.requests;
}

void clearRequests()
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.requests.clear();
}

QStringList ledger()
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    return world.ledger;
}

void clearLedger()
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.ledger.clear();
}

QStringList leaks()
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    QStringList list;
    for (const auto &handle : world.handles()) {
        if (handle->references == 0)
            continue;
        const QString line = kindName(handle->kind) + QLatin1Char(' ') + handle->label;
        list.append(handle->references == 1
                ? line
                : QStringLiteral("%1 %2").arg(line).arg(handle->references));
    }
    for (auto it = world.registrationHandlers.cbegin(); it != world.registrationHandlers.cend();
        ++it)
        list.append(QStringLiteral("registration_handler %1 %2")
                .arg(QString::fromUtf8(it->name))
                .arg(it.key()));
    for (auto it = world.deathHandlers.cbegin(); it != world.deathHandlers.cend(); ++it)
        list.append(QStringLiteral("death_handler %1 %2").arg(it->object->label).arg(it.key()));
    return list;
}

QStringList errors()
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    return world.errors;
}

} // namespace FakeBinder
