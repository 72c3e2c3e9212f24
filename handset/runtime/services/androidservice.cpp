// SPDX-License-Identifier: BSD-3-Clause
#include "services/androidservice.h"

#include "eventlog.h"
#include "nullabletext.h"
#include "requestheader.h"

#include <utility>

namespace {

// status_t of system/core
constexpr qint32 PermissionDenied = -1; // EPERM
constexpr qint32 BadValue = -22; // EINVAL
constexpr qint32 UnknownTransaction = -74; // EBADMSG

// WRITE_EXCEPTION_STACK_TRACE_THRESHOLD_MS of android.os.Parcel
constexpr qint64 StackTraceInterval = 1000;

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
    return nullableText(text);
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
    m_request = request;
    Reading reading = take(code, requestData(request), oneway);
    m_request = nullptr;
    reading.record.insert(QStringLiteral("pid"), gbinder_remote_request_sender_pid(request));
    reading.record.insert(
        QStringLiteral("uid"), qint64(gbinder_remote_request_sender_euid(request)));
    const bool held = m_held.holding();
    if (held)
        reading.record.insert(QStringLiteral("held"), true);
    m_log->record(reading.record);
    if (held) {
        hold(request, reading.answer);
        return nullptr;
    }
    const Answer answer = reading.answer();
    *status = answer.status;
    return reply(answer);
}

AndroidService::Reading AndroidService::take(quint32 code, const QByteArray &data, bool oneway)
{
    AndroidParcel parcel(data);
    RequestHeader header;
    // Java's services look at the interface only under a code that they know
    const bool known = m_methods.contains(code);
    if (known)
        header = RequestHeader::read(parcel, m_sdk, m_interface);
    QString method;
    const Call call = read(code, parcel, &method);
    if (oneway)
        parcel.fail(QStringLiteral("a two-way method was called one-way"));

    Reading reading;
    reading.record = {{QStringLiteral("event"), QStringLiteral("call")},
        {QStringLiteral("service"), m_name}, {QStringLiteral("code"), qint64(code)},
        {QStringLiteral("method"), method}, {QStringLiteral("arguments"), call.arguments},
        {QStringLiteral("strictMode"), header.strictMode}, {QStringLiteral("oneway"), oneway}};
    if (parcel.ok())
        reading.answer = answer(call, &reading.record);
    else if (!known)
        reading.answer = [] { return Answer{UnknownTransaction, {}}; };
    else if (header.interface != m_interface)
        reading.answer = [this] { return wrongInterface(); };
    else
        reading.answer = [] { return Answer{BadValue, {}}; };
    const QString error = parcel.ok() ? call.damage : parcel.error();
    if (!error.isEmpty()) {
        reading.record.insert(QStringLiteral("error"), error);
        reading.record.insert(QStringLiteral("data"), QString::fromLatin1(data.toHex()));
    }
    return reading;
}

std::function<AndroidService::Answer()> AndroidService::answer(
    const Call &call, QJsonObject *record)
{
    const std::optional<Failure> failure = std::exchange(m_failure, std::nullopt);
    if (!failure)
        return [this, call] { return answer(call.carryOut); };
    record->insert(QStringLiteral("failed"),
        QJsonObject{{QStringLiteral("status"), failure->status},
            {QStringLiteral("exception"), failure->exception}});
    if (failure->status != 0)
        return [failure] { return Answer{failure->status, {}}; };
    return [this, failure] {
        return answer([&failure](AndroidReply &reply) {
            reply.writeException(
                AndroidException::of(failure->exception, QStringLiteral("made to fail")));
        });
    };
}

AndroidService::Answer AndroidService::answer(const std::function<void(AndroidReply &)> &write)
{
    AndroidReply reply(m_sdk, stackTrace());
    if (write)
        write(reply);
    if (reply.threw() && !stackTrace().isNull())
        m_sinceStackTrace.start();
    return {0, reply.bytes()};
}

AndroidService::Answer AndroidService::wrongInterface()
{
    if (!throwsExceptions())
        return {PermissionDenied, {}};
    return answer([](AndroidReply &reply) {
        reply.writeException(AndroidException::of(AndroidException::Security,
            QStringLiteral("Binder invocation to an incorrect interface")));
    });
}

QString AndroidService::stackTrace() const
{
    // the system server sends one a second at most
    if (m_sinceStackTrace.isValid() && !m_sinceStackTrace.hasExpired(StackTraceInterval))
        return {};
    return QStringLiteral("\tat %1$Stub.onTransact(Unknown Source:0)\n").arg(m_interface);
}

GBinderLocalReply *AndroidService::reply(const Answer &answer) const
{
    if (answer.status != 0)
        return nullptr;
    GBinderLocalReply *reply = gbinder_local_object_new_reply(m_object.get());
    GBinderWriter writer;
    gbinder_local_reply_init_writer(reply, &writer);
    gbinder_writer_append_bytes(&writer, answer.data.constData(), gsize(answer.data.size()));
    return reply;
}

void AndroidService::hold(GBinderRemoteRequest *request, const std::function<Answer()> &answer)
{
    // only the thread that received it waits; libgbinder starts another one
    gbinder_remote_request_block(request);
    const std::shared_ptr<GBinderRemoteRequest> held(
        gbinder_remote_request_ref(request), GBinderRelease());
    m_held.add([this, held, answer] {
        const Answer result = answer();
        const LocalReplyPointer toSend(reply(result));
        gbinder_remote_request_complete(held.get(), toSend.get(), result.status);
    });
}
