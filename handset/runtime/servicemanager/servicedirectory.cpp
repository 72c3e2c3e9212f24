// SPDX-License-Identifier: BSD-3-Clause
#include "servicemanager/servicedirectory.h"

#include "androidparcel.h"
#include "requestheader.h"

#include <algorithm>
#include <utility>

namespace {

// IServiceManager and IBinder of frameworks/native
enum Code : quint32 {
    GetService = 1,
    CheckService = 2,
    AddService = 3,
    ListServices = 4,
    RegisterForNotifications = 5, // Android 11; not known here
    Ping = 0x5f504e47 // "_PNG"
};

// status_t of system/core: EPERM is what the service manager refuses with, also a code that it
// does not know
constexpr qint32 Refused = -1;

// do_add_service of service_manager.c
constexpr int LongestName = 127;

// Android 9 gave services a priority for dumpsys; before that there was none
constexpr int FirstSdkWithDumpPriority = 28;
constexpr qint32 AnyDumpPriority = 0xf;

QByteArray int32Bytes(qint32 value)
{
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

QByteArray string16Bytes(const QString &text)
{
    QByteArray bytes = int32Bytes(text.size());
    bytes.append(reinterpret_cast<const char *>(text.utf16()), (text.size() + 1) * 2);
    bytes.append((4 - bytes.size() % 4) % 4, '\0');
    return bytes;
}

QString methodName(quint32 code)
{
    switch (code) {
    case GetService:
        return QStringLiteral("getService");
    case CheckService:
        return QStringLiteral("checkService");
    case AddService:
        return QStringLiteral("addService");
    case ListServices:
        return QStringLiteral("listServices");
    case Ping:
        return QStringLiteral("ping");
    case RegisterForNotifications:
        return QStringLiteral("registerForNotifications");
    default:
        return QStringLiteral("unknown");
    }
}

} // namespace

ServiceDirectory::ServiceDirectory(int sdk, Callbacks callbacks)
    : m_sdk(sdk), m_callbacks(std::move(callbacks))
{
}

ServiceDirectory::Answer ServiceDirectory::transact(const Request &request)
{
    QJsonObject event{{QStringLiteral("event"), QStringLiteral("servicemanager")},
        {QStringLiteral("code"), qint64(request.code)},
        {QStringLiteral("method"), methodName(request.code)},
        {QStringLiteral("pid"), request.senderPid}};
    AndroidParcel parcel(request.data, request.objects);
    if (request.code != Ping)
        RequestHeader::read(parcel, m_sdk, QStringLiteral("android.os.IServiceManager"));

    Answer answer;
    switch (request.code) {
    case Ping:
        parcel.finish();
        break;
    case GetService:
    case CheckService:
        answer = getService(parcel, event);
        break;
    case AddService:
        answer = addService(parcel, event);
        break;
    case ListServices:
        answer = listServices(parcel, event);
        break;
    default:
        answer.status = Refused;
    }
    if (!parcel.ok()) {
        event.insert(QStringLiteral("error"), parcel.error());
        event.insert(QStringLiteral("data"), QString::fromLatin1(request.data.toHex()));
        answer = {Refused, {}, std::nullopt};
    }
    // a listing is one call for each service: the first one stands for all
    if (!parcel.ok() || event.value(QLatin1String("index")).toInt() == 0)
        m_callbacks.report(event);
    if (request.code == AddService && parcel.ok()) {
        m_callbacks.report({{QStringLiteral("event"), QStringLiteral("registered")},
            {QStringLiteral("service"), event.value(QLatin1String("service"))}});
    }
    return answer;
}

ServiceDirectory::Answer ServiceDirectory::getService(
    AndroidParcel &parcel, QJsonObject &event) const
{
    const QString name = parcel.readString16();
    parcel.finish();
    event.insert(QStringLiteral("service"), name);
    const auto service = std::find_if(m_services.cbegin(), m_services.cend(),
        [&name](const Service &known) { return known.name == name; });
    const bool found = service != m_services.cend() && service->handle != DeadHandle;
    event.insert(QStringLiteral("found"), found);
    if (!found)
        return {0, int32Bytes(0), std::nullopt};
    return {0, {}, service->handle};
}

ServiceDirectory::Answer ServiceDirectory::addService(AndroidParcel &parcel, QJsonObject &event)
{
    Service service;
    service.name = parcel.readString16();
    const AndroidParcel::Binder object = parcel.readBinder();
    if (parcel.ok() && object.kind != AndroidParcel::Binder::Kind::Remote)
        parcel.fail(QStringLiteral("service without an object"));
    service.handle = object.handle;
    const bool allowIsolated = parcel.readBool();
    service.dumpPriority = m_sdk >= FirstSdkWithDumpPriority ? parcel.readInt32() : AnyDumpPriority;
    parcel.finish();
    event.insert(QStringLiteral("service"), service.name);
    event.insert(QStringLiteral("allowIsolated"), allowIsolated);
    event.insert(QStringLiteral("dumpPriority"), service.dumpPriority);
    if (parcel.ok() && service.name.isEmpty())
        parcel.fail(QStringLiteral("service without a name"));
    if (parcel.ok() && service.name.size() > LongestName)
        parcel.fail(QStringLiteral("name of %1 units").arg(service.name.size()));
    if (!parcel.ok())
        return {};
    add(service);
    return {0, int32Bytes(0), std::nullopt};
}

ServiceDirectory::Answer ServiceDirectory::listServices(
    AndroidParcel &parcel, QJsonObject &event) const
{
    const qint32 index = parcel.readInt32();
    const qint32 priorities =
        m_sdk >= FirstSdkWithDumpPriority ? parcel.readInt32() : AnyDumpPriority;
    parcel.finish();
    event.insert(QStringLiteral("index"), index);
    qint32 position = 0;
    for (const Service &service : m_services) {
        if ((service.dumpPriority & priorities) != 0 && position++ == index)
            return {0, string16Bytes(service.name), std::nullopt};
    }
    return {Refused, {}, std::nullopt};
}

void ServiceDirectory::add(const Service &service)
{
    // keep before release, for the two may be the same object
    m_callbacks.keepHandle(service.handle);
    const auto known = std::find_if(m_services.begin(), m_services.end(),
        [&service](const Service &other) { return other.name == service.name; });
    if (known == m_services.end()) {
        m_services.prepend(service);
        return;
    }
    // a name that is known goes to the newcomer, with its place and priority
    const quint32 oldHandle = std::exchange(known->handle, service.handle);
    if (oldHandle != DeadHandle)
        m_callbacks.releaseHandle(oldHandle);
}

void ServiceDirectory::handleDied(quint32 handle)
{
    for (Service &service : m_services) {
        if (service.handle != handle)
            continue;
        // svcinfo_death: the name stays
        service.handle = DeadHandle;
        m_callbacks.releaseHandle(handle);
        m_callbacks.report({{QStringLiteral("event"), QStringLiteral("died")},
            {QStringLiteral("service"), service.name}});
    }
}
