// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/world.h"

namespace FakeBinder {

World &World::instance()
{
    // Never destroyed: gbinder calls may come as late as the static destructors.
    static World &world = *new World;
    return world;
}

QString kindName(Handle::Kind kind)
{
    switch (kind) {
    case Handle::Kind::ServiceManager:
        return QStringLiteral("servicemanager");
    case Handle::Kind::ServiceName:
        return QStringLiteral("servicename");
    case Handle::Kind::LocalObject:
        return QStringLiteral("local_object");
    case Handle::Kind::RemoteObject:
        return QStringLiteral("remote_object");
    case Handle::Kind::Client:
        return QStringLiteral("client");
    case Handle::Kind::LocalRequest:
        return QStringLiteral("local_request");
    case Handle::Kind::LocalReply:
        return QStringLiteral("local_reply");
    case Handle::Kind::RemoteRequest:
        return QStringLiteral("remote_request");
    case Handle::Kind::RemoteReply:
        return QStringLiteral("remote_reply");
    }
    return {};
}

Handle *World::find(const void *pointer, Handle::Kind kind, const char *function)
{
    const QString name = QString::fromLatin1(function);
    Handle *handle = m_byPointer.value(pointer);
    if (!handle) {
        error(QStringLiteral("%1: not a handle").arg(name));
        return nullptr;
    }
    if (handle->kind != kind) {
        error(
            QStringLiteral("%1: given the %2 %3").arg(name, kindName(handle->kind), handle->label));
        return nullptr;
    }
    if (!handle->isUsable()) {
        error(QStringLiteral("%1 %2: released before").arg(name, handle->label));
        return nullptr;
    }
    return handle;
}

void World::ref(const void *pointer, Handle::Kind kind)
{
    const QString function = kindName(kind) + QLatin1String("_ref");
    if (!pointer)
        return;
    if (Handle *handle = find(pointer, kind, function.toLatin1().constData())) {
        ++handle->references;
        note(function + QLatin1Char(' ') + handle->label);
    }
}

void World::unref(const void *pointer, Handle::Kind kind, const char *verb)
{
    const QString function = kindName(kind) + QLatin1Char('_') + QLatin1String(verb);
    if (!pointer)
        return;
    Handle *handle = find(pointer, kind, function.toLatin1().constData());
    if (!handle)
        return;
    if (handle->references == 0) {
        error(QStringLiteral("%1 %2: no reference to release").arg(function, handle->label));
        return;
    }
    --handle->references;
    note(function + QLatin1Char(' ') + handle->label);
}

void World::autorelease(Handle *handle)
{
    ++handle->borrowed;
    defer([this, handle] {
        const std::lock_guard<std::mutex> lock(mutex);
        --handle->borrowed;
    });
}

void World::defer(std::function<void()> action)
{
    const auto run = [](gpointer data) -> gboolean {
        (*static_cast<std::function<void()> *>(data))();
        return G_SOURCE_REMOVE;
    };
    const auto destroy = [](gpointer data) { delete static_cast<std::function<void()> *>(data); };
    g_idle_add_full(G_PRIORITY_DEFAULT, run, new std::function<void()>(std::move(action)), destroy);
}

RemoteObject *World::remoteObject(quint64 id) const
{
    for (const auto &handle : m_handles) {
        if (handle->kind != Handle::Kind::RemoteObject)
            continue;
        auto *object = static_cast<RemoteObject *>(handle.get());
        if (object->id == id)
            return object;
    }
    return nullptr;
}

LocalObject *World::localObject(quint64 id) const
{
    for (const auto &handle : m_handles) {
        if (handle->kind != Handle::Kind::LocalObject)
            continue;
        auto *object = static_cast<LocalObject *>(handle.get());
        if (object->id == id)
            return object;
    }
    return nullptr;
}

QByteArray rpcHeader(Protocol protocol, const QByteArray &interface)
{
    if (interface.isNull())
        return {};
    QByteArray header("\x00\x00\x40\x00", 4); // strict mode: gather the penalties
    if (protocol == Protocol::Aidl2)
        header.append("\xff\xff\xff\xff", 4); // no work source
    const QString text = QString::fromUtf8(interface);
    const qint32 length = text.size();
    header.append(reinterpret_cast<const char *>(&length), sizeof(length));
    header.append(reinterpret_cast<const char *>(text.utf16()), (length + 1) * 2);
    while (header.size() % 4 != 0)
        header.append('\0');
    return header;
}

} // namespace FakeBinder
