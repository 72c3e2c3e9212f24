// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/handles.h"

#include <QHash>
#include <QMap>
#include <QStringList>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace FakeBinder {

/// The state behind all functions of the fake library. Functions of gbinder.h and of
/// fakebinder.h hold the mutex while they work on it and let go of it around every callback.
class World
{
public:
    struct RegistrationHandler
    {
        GBinderServiceManager *manager;
        QByteArray name;
        GBinderServiceManagerRegistrationFunc function;
        void *userData;
    };
    struct DeathHandler
    {
        RemoteObject *object;
        GBinderRemoteObjectNotifyFunc function;
        void *userData;
    };

    /// A call whose caller does not wait for it.
    struct AsynchronousCall
    {
        Client *client;
        Reply reply;
        GBinderClientReplyFunc function;
        GDestroyNotify destroy;
        void *userData;
        bool isCancelled = false;
    };

    /// Made on first use and never destroyed.
    static World &instance();

    /// Takes a handle over and gives it back.
    template <typename Kind, typename... Arguments> Kind *make(Arguments &&...arguments)
    {
        auto handle = std::make_unique<Kind>(std::forward<Arguments>(arguments)...);
        Kind *raw = handle.get();
        m_byPointer.insert(raw->pointer(), raw);
        m_handles.push_back(std::move(handle));
        return raw;
    }
    /// The handle behind a pointer; null, and an error noted, when there is none of that kind
    /// that may be used.
    Handle *find(const void *pointer, Handle::Kind kind, const char *function);
    /// The handle behind a pointer, released or not; null when there is none.
    Handle *peek(const void *pointer) const { return m_byPointer.value(pointer); }
    /// One reference more or less, with a line in the ledger. Nothing happens for null.
    void ref(const void *pointer, Handle::Kind kind);
    void unref(const void *pointer, Handle::Kind kind, const char *verb = "unref");

    void note(const QString &line) { ledger.append(line); }
    void error(const QString &line) { errors.append(line); }
    /// Keeps a handle usable until the main loop turns.
    void autorelease(Handle *handle);
    /// Runs it in the glib main loop, as gbinder's own callbacks are.
    static void defer(std::function<void()> action);

    RemoteObject *service(const QString &name) const { return services.value(name); }
    RemoteObject *remoteObject(quint64 id) const;
    LocalObject *localObject(quint64 id) const;
    const std::vector<std::unique_ptr<Handle>> &handles() const { return m_handles; }

    std::mutex mutex;
    bool present = true;
    Protocol protocol = Protocol::Aidl;
    bool requestsFail = false;
    bool localObjectsFail = false;
    bool serviceNamesFail = false;
    QStringList failingClients;
    QMap<QString, RemoteObject *> services;
    QVector<ServiceName *> published;
    QMap<gulong, RegistrationHandler> registrationHandlers;
    QMap<gulong, DeathHandler> deathHandlers;
    QMap<gulong, AsynchronousCall> calls;
    std::condition_variable killed; // a remote object has died
    gulong nextHandlerId = 1;
    gulong nextCallId = 1;
    quint32 nextServiceId = 1;
    quint32 nextRemoteObjectId = 1000;
    quint32 nextLocalObjectId = 1;
    QVector<Request> requests;
    QStringList ledger;
    QStringList errors;
    /// Called without the mutex after each request and each change of `published`.
    std::function<void(const Request &)> requestObserver;
    std::function<void()> publishedObserver;

private:
    World() = default;

    std::vector<std::unique_ptr<Handle>> m_handles;
    QHash<const void *, Handle *> m_byPointer;
};

/// Ends the calls that the process under test has under way on an object that has died.
void failCalls(const RemoteObject *object);

/// The bytes that libgbinder puts before the payload.
QByteArray rpcHeader(Protocol protocol, const QByteArray &interface);

/// The typed look-up that every C function begins with; null is no error.
template <typename Type>
Type *lookUp(World &world, const void *pointer, Handle::Kind kind, const char *function)
{
    return pointer ? static_cast<Type *>(world.find(pointer, kind, function)) : nullptr;
}

} // namespace FakeBinder
