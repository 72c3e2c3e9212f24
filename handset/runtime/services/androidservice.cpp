// SPDX-License-Identifier: BSD-3-Clause
#include "services/androidservice.h"

#include "eventlog.h"
#include "requestheader.h"

#include <utility>

namespace {

// status_t of system/core
constexpr qint32 BadValue = -22; // EINVAL

QByteArray requestData(GBinderRemoteRequest *request)
{
    GBinderReader reader;
    gbinder_remote_request_init_reader(request, &reader);
    gsize size = 0;
    const void *bytes = gbinder_reader_get_data(&reader, &size);
    return {static_cast<const char *>(bytes), int(size)};
}

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

void AndroidService::add(const char *method, const Codes &codes, const Reader &reader)
{
    const quint32 code = m_sdk == 27 ? codes.sdk27 : m_sdk == 28 ? codes.sdk28 : codes.sdk29;
    if (code != NotThere)
        m_methods.insert(code, {QLatin1String(method), reader});
}

AndroidService::Call AndroidService::read(
    quint32 code, AndroidParcel &request, QString *method) const
{
    const auto found = m_methods.constFind(code);
    if (found == m_methods.constEnd()) {
        *method = QStringLiteral("unknown");
        request.fail(QStringLiteral("code %1 of \"%2\" is unknown").arg(code).arg(m_name));
        return {};
    }
    *method = found->name;
    const Call call = found->reader(request);
    request.finish();
    return call;
}

std::shared_ptr<GBinderRemoteObject> AndroidService::object(
    const AndroidParcel::Binder &binder) const
{
    if (!m_request || binder.kind == AndroidParcel::Binder::Kind::Null)
        return {};
    GBinderReader reader;
    gbinder_remote_request_init_reader(m_request, &reader);
    gsize size = 0;
    gbinder_reader_get_data(&reader, &size);
    // everything that stands before an object consists of whole words
    while (qint64(size - gbinder_reader_bytes_remaining(&reader)) < binder.offset
        && gbinder_reader_read_int32(&reader, nullptr)) { }
    return RemoteObjectPointer(gbinder_reader_read_object(&reader));
}

void AndroidService::readUser(AndroidParcel &request)
{
    const qint32 user = request.readInt32();
    if (user != 0)
        request.fail(QStringLiteral("user is %1").arg(user));
}

void AndroidService::writeNoException(GBinderWriter *writer)
{
    gbinder_writer_append_int32(writer, 0);
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

GBinderLocalReply *AndroidService::onTransact(GBinderLocalObject *, GBinderRemoteRequest *request,
    guint code, guint flags, int *status, void *service)
{
    return static_cast<AndroidService *>(service)->handle(
        request, code, (flags & GBINDER_TX_FLAG_ONEWAY) != 0, status);
}

GBinderLocalReply *AndroidService::handle(
    GBinderRemoteRequest *request, quint32 code, bool oneway, int *status)
{
    const QByteArray data = requestData(request);
    AndroidParcel parcel(data);
    m_request = request;
    const RequestHeader header = RequestHeader::read(parcel, m_sdk, m_interface);
    QString method;
    const Call call = read(code, parcel, &method);
    m_request = nullptr;
    if (oneway)
        parcel.fail(QStringLiteral("a two-way method was called one-way"));

    QJsonObject event{{QStringLiteral("event"), QStringLiteral("call")},
        {QStringLiteral("service"), m_name}, {QStringLiteral("code"), qint64(code)},
        {QStringLiteral("method"), method}, {QStringLiteral("arguments"), call.arguments},
        {QStringLiteral("strictMode"), header.strictMode}, {QStringLiteral("oneway"), oneway},
        {QStringLiteral("pid"), gbinder_remote_request_sender_pid(request)},
        {QStringLiteral("uid"), qint64(gbinder_remote_request_sender_euid(request))}};
    Answer answer;
    if (parcel.ok()) {
        answer = this->answer(call, &event);
    } else {
        event.insert(QStringLiteral("error"), parcel.error());
        event.insert(QStringLiteral("data"), QString::fromLatin1(data.toHex()));
        answer = [](int *refused) {
            *refused = BadValue;
            return nullptr;
        };
    }
    if (m_held.holding())
        event.insert(QStringLiteral("held"), true);
    m_log->record(event);
    if (!m_held.holding())
        return answer(status);
    hold(request, answer);
    return nullptr;
}

AndroidService::Answer AndroidService::answer(const Call &call, QJsonObject *event)
{
    const std::optional<Failure> failure = std::exchange(m_failure, std::nullopt);
    if (!failure) {
        return [this, call](int *status) {
            *status = 0;
            return reply(call.carryOut);
        };
    }
    event->insert(QStringLiteral("failed"),
        QJsonObject{{QStringLiteral("status"), failure->status},
            {QStringLiteral("exception"), failure->exception}});
    return [this, failure](int *status) -> GBinderLocalReply * {
        *status = failure->status;
        if (failure->status != 0)
            return nullptr;
        return reply([this, failure](GBinderWriter *writer) { writeFailure(*failure, writer); });
    };
}

GBinderLocalReply *AndroidService::reply(const std::function<void(GBinderWriter *)> &write) const
{
    GBinderLocalReply *reply = gbinder_local_object_new_reply(m_object.get());
    GBinderWriter writer;
    gbinder_local_reply_init_writer(reply, &writer);
    if (write)
        write(&writer);
    return reply;
}

void AndroidService::writeFailure(const Failure &failure, GBinderWriter *writer) const
{
    gbinder_writer_append_int32(writer, guint32(failure.exception));
    gbinder_writer_append_string16(writer, "made to fail");
    // Android 9 sends the size of a stack trace behind the message
    if (m_sdk >= 28)
        gbinder_writer_append_int32(writer, 0);
}

void AndroidService::hold(GBinderRemoteRequest *request, const Answer &answer)
{
    // only the thread that received it waits; libgbinder starts another one
    gbinder_remote_request_block(request);
    const std::shared_ptr<GBinderRemoteRequest> held(
        gbinder_remote_request_ref(request), GBinderRelease());
    m_held.add([held, answer] {
        int status = 0;
        const LocalReplyPointer reply(answer(&status));
        gbinder_remote_request_complete(held.get(), reply.get(), status);
    });
}
