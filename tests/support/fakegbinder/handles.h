// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/fakebindertypes.h"

#include <gbinder.h>

namespace FakeBinder {

/// The bytes behind a writer or a reader.
struct ParcelData
{
    QByteArray bytes;
    QVector<int> offsets;
    QVector<quint32> localObjects;
};

/// What a gbinder pointer points at. Handles are never freed, so that a use after the release
/// can be told and does no harm.
struct Handle
{
    enum class Kind {
        ServiceManager,
        ServiceName,
        LocalObject,
        RemoteObject,
        Client,
        LocalRequest,
        LocalReply,
        RemoteRequest,
        RemoteReply,
    };

    Handle(Kind handleKind, const QString &handleLabel) : kind(handleKind), label(handleLabel) { }
    virtual ~Handle() = default;
    Q_DISABLE_COPY(Handle)

    /// The pointer that the process under test holds.
    virtual const void *pointer() const { return this; }
    bool isUsable() const { return references > 0 || borrowed > 0; }

    const Kind kind;
    const QString label; ///< as in the ledger
    int references = 1; ///< of the process under test
    int borrowed = 0; ///< times that the fake holds it for the process: autoreleased, in a call
};

using Kind = Handle::Kind;

struct ServiceManager : Handle
{
    explicit ServiceManager(const QString &device)
        : Handle(Kind::ServiceManager, device), deviceName(device.toUtf8())
    {
    }
    QByteArray deviceName;
};

struct LocalObject : Handle
{
    LocalObject(const QString &interface, quint32 number)
        : Handle(Kind::LocalObject, interface), id(number)
    {
    }
    quint32 id;
    GBinderLocalTransactFunc function = nullptr;
    void *userData = nullptr;
};

struct ServiceName : Handle
{
    ServiceName(const QString &name, quint32 id)
        : Handle(Kind::ServiceName, name), nameBytes(name.toUtf8()), objectId(id)
    {
        shown.name = nameBytes.constData();
    }
    const void *pointer() const override { return &shown; }
    QByteArray nameBytes;
    GBinderServiceName shown = {};
    quint32 objectId;
};

struct RemoteObject : Handle
{
    RemoteObject(const QString &name, quint32 number, Handler calls)
        : Handle(Kind::RemoteObject, name), id(number), handler(std::move(calls))
    {
        references = 0;
    }
    quint32 id;
    Handler handler;
    bool isDead = false;
};

struct Client : Handle
{
    Client(RemoteObject *object, const char *interface)
        : Handle(Kind::Client, object->label), remote(object), interfaceName(interface)
    {
    }
    RemoteObject *remote;
    QByteArray interfaceName;
};

/// A request or a reply, of either direction.
struct Message : Handle
{
    using Handle::Handle;
    ParcelData data;
    int payloadStart = 0; ///< behind the header of a remote request
    QByteArray interfaceName; ///< of a remote request; null if its header cannot be read
};

/// The word of a kind in the names of gbinder's functions: "remote_object".
QString kindName(Handle::Kind kind);

} // namespace FakeBinder
