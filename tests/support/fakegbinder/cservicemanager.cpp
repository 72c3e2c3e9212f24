// SPDX-License-Identifier: BSD-3-Clause
// gbinder_servicemanager.h and gbinder_servicename.h
#include "tests/support/fakegbinder/agent.h"
#include "tests/support/fakegbinder/world.h"

#include <algorithm>

using namespace FakeBinder;

namespace {

ServiceManager *findManager(World &world, GBinderServiceManager *manager, const char *function)
{
    return lookUp<ServiceManager>(world, manager, Kind::ServiceManager, function);
}

void announcePublished(World &world)
{
    if (world.publishedObserver)
        world.publishedObserver();
}

} // namespace

extern "C" {

GBinderServiceManager *gbinder_servicemanager_new(const char *dev)
{
    // Nothing else in gbinder can come before this call.
    Agent::connectIfAsked();
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const QString device = QString::fromUtf8(dev);
    if (!world.present || !dev) {
        world.note(QStringLiteral("servicemanager_new %1 failed").arg(device));
        return nullptr;
    }
    world.note(QStringLiteral("servicemanager_new %1").arg(device));
    return reinterpret_cast<GBinderServiceManager *>(world.make<ServiceManager>(device));
}

GBinderServiceManager *gbinder_servicemanager_ref(GBinderServiceManager *sm)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.ref(sm, Kind::ServiceManager);
    return sm;
}

void gbinder_servicemanager_unref(GBinderServiceManager *sm)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.unref(sm, Kind::ServiceManager);
}

const char *gbinder_servicemanager_device(GBinderServiceManager *sm)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const ServiceManager *manager = findManager(world, sm, "servicemanager_device");
    return manager ? manager->deviceName.constData() : nullptr;
}

gboolean gbinder_servicemanager_is_present(GBinderServiceManager *sm)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    return findManager(world, sm, "servicemanager_is_present") && world.present;
}

GBinderLocalObject *gbinder_servicemanager_new_local_object(
    GBinderServiceManager *sm, const char *iface, GBinderLocalTransactFunc handler, void *user_data)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    if (!findManager(world, sm, "servicemanager_new_local_object"))
        return nullptr;
    const QString interface = QString::fromUtf8(iface);
    if (world.localObjectsFail) {
        world.note(QStringLiteral("servicemanager_new_local_object %1 failed").arg(interface));
        return nullptr;
    }
    world.note(QStringLiteral("servicemanager_new_local_object %1").arg(interface));
    auto *object = world.make<LocalObject>(interface, world.nextLocalObjectId++);
    object->function = handler;
    object->userData = user_data;
    return reinterpret_cast<GBinderLocalObject *>(object);
}

GBinderRemoteObject *gbinder_servicemanager_get_service_sync(
    GBinderServiceManager *sm, const char *name, int *status)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    if (!findManager(world, sm, "servicemanager_get_service_sync") || !name)
        return nullptr;
    const QString service = QString::fromUtf8(name);
    world.note(QStringLiteral("servicemanager_get_service_sync %1").arg(service));
    if (status)
        *status = GBINDER_STATUS_OK;
    RemoteObject *object = world.present ? world.service(service) : nullptr;
    if (!object)
        return nullptr;
    world.autorelease(object);
    return reinterpret_cast<GBinderRemoteObject *>(object);
}

gulong gbinder_servicemanager_add_registration_handler(GBinderServiceManager *sm, const char *name,
    GBinderServiceManagerRegistrationFunc func, void *user_data)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    if (!findManager(world, sm, "servicemanager_add_registration_handler") || !name || !func)
        return 0;
    const gulong id = world.nextHandlerId++;
    world.registrationHandlers.insert(id, {sm, name, func, user_data});
    world.note(QStringLiteral("servicemanager_add_registration_handler %1 %2")
            .arg(QString::fromUtf8(name))
            .arg(id));
    return id;
}

void gbinder_servicemanager_remove_handler(GBinderServiceManager *sm, gulong id)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    if (!findManager(world, sm, "servicemanager_remove_handler") || id == 0)
        return;
    const auto found = world.registrationHandlers.constFind(id);
    if (found == world.registrationHandlers.constEnd() || found->manager != sm) {
        world.error(QStringLiteral("servicemanager_remove_handler %1: no such handler").arg(id));
        return;
    }
    world.registrationHandlers.remove(id);
    world.note(QStringLiteral("servicemanager_remove_handler %1").arg(id));
}

GBinderServiceName *gbinder_servicename_new(
    GBinderServiceManager *sm, GBinderLocalObject *object, const char *name)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    const QString service = QString::fromUtf8(name);
    auto *local = lookUp<LocalObject>(world, object, Kind::LocalObject, "servicename_new");
    if (!findManager(world, sm, "servicename_new") || !local || !name || world.serviceNamesFail) {
        world.note(QStringLiteral("servicename_new %1 failed").arg(service));
        return nullptr;
    }
    world.note(QStringLiteral("servicename_new %1").arg(service));
    auto *entry = world.make<ServiceName>(service, local->id);
    world.published.append(entry);
    lock.unlock();
    announcePublished(world);
    return &entry->shown;
}

GBinderServiceName *gbinder_servicename_ref(GBinderServiceName *name)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.ref(name, Kind::ServiceName);
    return name;
}

void gbinder_servicename_unref(GBinderServiceName *name)
{
    World &world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    world.unref(name, Kind::ServiceName);
    const auto gone = std::find_if(world.published.begin(), world.published.end(),
        [name](const ServiceName *entry) { return &entry->shown == name; });
    if (gone == world.published.end() || (*gone)->references > 0)
        return;
    world.published.erase(gone);
    lock.unlock();
    announcePublished(world);
}

} // extern "C"
