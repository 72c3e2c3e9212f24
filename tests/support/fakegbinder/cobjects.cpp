// SPDX-License-Identifier: BSD-3-Clause
// gbinder_remote_object.h and gbinder_local_object.h
#include "tests/support/fakegbinder/world.h"

using namespace FakeBinder;

extern "C" {

GBinderRemoteObject *gbinder_remote_object_ref(GBinderRemoteObject *obj)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.ref(obj, Kind::RemoteObject);
    return obj;
}

void gbinder_remote_object_unref(GBinderRemoteObject *obj)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.unref(obj, Kind::RemoteObject);
}

gboolean gbinder_remote_object_is_dead(GBinderRemoteObject *obj)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const auto *object =
        lookUp<RemoteObject>(world, obj, Kind::RemoteObject, "remote_object_is_dead");
    return !object || object->isDead;
}

gulong gbinder_remote_object_add_death_handler(
    GBinderRemoteObject *obj, GBinderRemoteObjectNotifyFunc func, void *user_data)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    auto *object =
        lookUp<RemoteObject>(world, obj, Kind::RemoteObject, "remote_object_add_death_handler");
    if (!object || !func)
        return 0;
    const gulong id = world.nextHandlerId++;
    world.deathHandlers.insert(id, {object, func, user_data});
    world.note(QStringLiteral("remote_object_add_death_handler %1 %2").arg(object->label).arg(id));
    return id;
}

void gbinder_remote_object_remove_handler(GBinderRemoteObject *obj, gulong id)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const auto *object =
        lookUp<RemoteObject>(world, obj, Kind::RemoteObject, "remote_object_remove_handler");
    if (!object || id == 0)
        return;
    const QString line =
        QStringLiteral("remote_object_remove_handler %1 %2").arg(object->label).arg(id);
    const auto found = world.deathHandlers.constFind(id);
    if (found == world.deathHandlers.constEnd() || found->object != object) {
        world.error(line + QLatin1String(": no such handler"));
        return;
    }
    world.deathHandlers.remove(id);
    world.note(line);
}

GBinderLocalObject *gbinder_local_object_ref(GBinderLocalObject *obj)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.ref(obj, Kind::LocalObject);
    return obj;
}

void gbinder_local_object_unref(GBinderLocalObject *obj)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.unref(obj, Kind::LocalObject);
}

void gbinder_local_object_drop(GBinderLocalObject *obj)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.unref(obj, Kind::LocalObject, "drop");
    Handle *handle = world.peek(obj);
    if (!handle || handle->kind != Kind::LocalObject)
        return;
    // From now on it takes no calls, even if somebody else holds a reference.
    static_cast<LocalObject *>(handle)->function = nullptr;
}

GBinderLocalReply *gbinder_local_object_new_reply(GBinderLocalObject *obj)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    const auto *object =
        lookUp<LocalObject>(world, obj, Kind::LocalObject, "local_object_new_reply");
    if (!object)
        return nullptr;
    world.note(QStringLiteral("local_object_new_reply %1").arg(object->label));
    return reinterpret_cast<GBinderLocalReply *>(
        world.make<Message>(Kind::LocalReply, object->label));
}

} // extern "C"
