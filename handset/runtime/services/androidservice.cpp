// SPDX-License-Identifier: BSD-3-Clause
#include "services/androidservice.h"

#include "eventlog.h"
#include "requestheader.h"

#include <utility>

namespace {

// status_t of system/core
constexpr qint32 UnknownTransaction = -74; // EBADMSG
constexpr qint32 BadValue = -22; // EINVAL

} // namespace

AndroidService::AndroidService(QString name, QString interface, int sdk, EventLog *log)
    : m_name(std::move(name)), m_interface(std::move(interface)), m_sdk(sdk), m_log(log)
{
}

AndroidService::~AndroidService() = default;

bool AndroidService::publish(GBinderServiceManager *manager)
{
    m_object.reset(gbinder_servicemanager_new_local_object(
        manager, m_interface.toLatin1().constData(), &AndroidService::onTransact, this));
    return m_object
        && gbinder_servicemanager_add_service_sync(
               manager, m_name.toLatin1().constData(), m_object.get())
        == GBINDER_STATUS_OK;
}

AndroidService::Answer AndroidService::unknownCode()
{
    return {QStringLiteral("unknown"), {}, {}, UnknownTransaction};
}

QJsonValue AndroidService::describe(const AndroidParcel::Binder &object)
{
    switch (object.kind) {
    case AndroidParcel::Binder::Kind::Remote:
        return QJsonObject{{QStringLiteral("handle"), qint64(object.handle)}};
    case AndroidParcel::Binder::Kind::Local:
        return QStringLiteral("local");
    case AndroidParcel::Binder::Kind::Null:
        break;
    }
    return {};
}

QJsonValue AndroidService::describe(const QString &text)
{
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}

GBinderLocalReply *AndroidService::onTransact(GBinderLocalObject *object,
    GBinderRemoteRequest *request, guint code, guint flags, int *status, void *service)
{
    const Answer answer = static_cast<AndroidService *>(service)->handle(request, code, flags);
    *status = answer.status;
    if (answer.status != 0 || (flags & GBINDER_TX_FLAG_ONEWAY) != 0)
        return nullptr;
    GBinderLocalReply *reply = gbinder_local_object_new_reply(object);
    if (answer.write) {
        GBinderWriter writer;
        gbinder_local_reply_init_writer(reply, &writer);
        answer.write(&writer);
    }
    return reply;
}

AndroidService::Answer AndroidService::handle(
    GBinderRemoteRequest *request, quint32 code, quint32 flags)
{
    GBinderReader reader;
    gbinder_remote_request_init_reader(request, &reader);
    gsize size = 0;
    const void *bytes = gbinder_reader_get_data(&reader, &size);
    const QByteArray data(static_cast<const char *>(bytes), int(size));

    AndroidParcel parcel(data);
    const RequestHeader header = RequestHeader::read(parcel, m_sdk, m_interface);
    Answer answer = transact(code, parcel);
    if (answer.status == 0)
        parcel.finish();

    QJsonObject event{{QStringLiteral("event"), QStringLiteral("call")},
        {QStringLiteral("service"), m_name}, {QStringLiteral("code"), qint64(code)},
        {QStringLiteral("method"), answer.method}, {QStringLiteral("arguments"), answer.arguments},
        {QStringLiteral("strictMode"), header.strictMode},
        {QStringLiteral("oneway"), (flags & GBINDER_TX_FLAG_ONEWAY) != 0},
        {QStringLiteral("pid"), gbinder_remote_request_sender_pid(request)},
        {QStringLiteral("uid"), qint64(gbinder_remote_request_sender_euid(request))}};
    if (!parcel.ok()) {
        answer.status = BadValue;
        event.insert(QStringLiteral("error"), parcel.error());
        event.insert(QStringLiteral("data"), QString::fromLatin1(data.toHex()));
    } else if (answer.status != 0) {
        event.insert(QStringLiteral("error"), QStringLiteral("unknown code"));
    }
    m_log->record(event);
    return answer;
}
