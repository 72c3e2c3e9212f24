// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fakegbinder/messages.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <sys/socket.h>

namespace FakeBinder::Messages {

namespace {

const QLatin1String Service("service");
const QLatin1String Code("code");
const QLatin1String Flags("flags");
const QLatin1String Interface("interface");
const QLatin1String Payload("payload");
const QLatin1String Bytes("bytes");
const QLatin1String Offsets("offsets");
const QLatin1String LocalObjects("localObjects");
const QLatin1String Status("status");
const QLatin1String HasData("hasData");
const QLatin1String Delay("delay");
const QLatin1String Name("name");
const QLatin1String ObjectId("objectId");
const QLatin1String InitialStatus("initialStatus");
const QLatin1String Delivered("delivered");

QJsonValue fromBytes(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

QByteArray toBytes(const QJsonValue &value)
{
    return QByteArray::fromBase64(value.toString().toLatin1());
}

// A null string stays apart from an empty one.
QJsonValue fromText(const QString &text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QString toText(const QJsonValue &value)
{
    return value.isString() ? QStringLiteral("") + value.toString() : QString();
}

template <typename Number> QJsonArray fromNumbers(const QVector<Number> &numbers)
{
    QJsonArray array;
    for (const Number number : numbers)
        array.append(qint64(number));
    return array;
}

template <typename Number> QVector<Number> toNumbers(const QJsonValue &value)
{
    QVector<Number> numbers;
    const QJsonArray array = value.toArray();
    for (const QJsonValue &number : array)
        numbers.append(Number(number.toDouble()));
    return numbers;
}

quint32 toWord(const QJsonValue &value)
{
    return quint32(value.toDouble());
}

} // namespace

QJsonObject toJson(const Request &request)
{
    return {{Service, request.service}, {Code, qint64(request.code)},
        {Flags, qint64(request.flags)}, {Interface, fromText(request.interface)},
        {Payload, fromBytes(request.payload)}, {Bytes, fromBytes(request.bytes)},
        {Offsets, fromNumbers(request.offsets)}, {LocalObjects, fromNumbers(request.localObjects)}};
}

Request requestFrom(const QJsonObject &json)
{
    return {json[Service].toString(), toWord(json[Code]), toWord(json[Flags]),
        toText(json[Interface]), toBytes(json[Payload]), toBytes(json[Bytes]),
        toNumbers<int>(json[Offsets]), toNumbers<quint32>(json[LocalObjects])};
}

QJsonObject toJson(const Reply &reply)
{
    return {{Status, reply.status}, {HasData, reply.hasData}, {Bytes, fromBytes(reply.bytes)},
        {Offsets, fromNumbers(reply.offsets)}, {Delay, reply.delay}};
}

Reply replyFrom(const QJsonObject &json)
{
    return {json[Status].toInt(), json[HasData].toBool(), toBytes(json[Bytes]),
        toNumbers<int>(json[Offsets]), json[Delay].toInt()};
}

QJsonObject toJson(const Call &call)
{
    return {{Code, qint64(call.code)}, {Interface, fromText(call.interface)},
        {Payload, fromBytes(call.payload)}, {Offsets, fromNumbers(call.offsets)},
        {Flags, qint64(call.flags)}, {InitialStatus, call.initialStatus}};
}

Call callFrom(const QJsonObject &json)
{
    return {toWord(json[Code]), toText(json[Interface]), toBytes(json[Payload]),
        toNumbers<int>(json[Offsets]), toWord(json[Flags]), json[InitialStatus].toInt()};
}

QJsonObject toJson(const Answer &answer)
{
    return {{Delivered, answer.delivered}, {Status, answer.status}, {HasData, answer.hasReply},
        {Bytes, fromBytes(answer.bytes)}};
}

Answer answerFrom(const QJsonObject &json)
{
    return {json[Delivered].toBool(), json[Status].toInt(), json[HasData].toBool(),
        toBytes(json[Bytes])};
}

QJsonArray toJson(const QVector<PublishedService> &services)
{
    QJsonArray array;
    for (const PublishedService &service : services) {
        array.append(QJsonObject{{Name, service.name}, {Interface, fromText(service.interface)},
            {ObjectId, qint64(service.objectId)}});
    }
    return array;
}

QVector<PublishedService> servicesFrom(const QJsonArray &json)
{
    QVector<PublishedService> services;
    for (const QJsonValue &value : json) {
        services.append(
            {value[Name].toString(), toText(value[Interface]), toWord(value[ObjectId])});
    }
    return services;
}

bool send(int socket, const QJsonObject &message)
{
    const QByteArray line = QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
    int sent = 0;
    while (sent < line.size()) {
        const ssize_t count =
            ::send(socket, line.constData() + sent, size_t(line.size() - sent), MSG_NOSIGNAL);
        if (count < 0)
            return false;
        sent += int(count);
    }
    return true;
}

void receive(int socket, QByteArray *buffer, const std::function<bool(const QJsonObject &)> &take)
{
    for (;;) {
        for (int end = buffer->indexOf('\n'); end >= 0; end = buffer->indexOf('\n')) {
            const QByteArray line = buffer->left(end);
            buffer->remove(0, end + 1);
            if (!take(QJsonDocument::fromJson(line).object()))
                return;
        }
        char chunk[4096];
        const ssize_t count = ::recv(socket, chunk, sizeof(chunk), 0);
        if (count <= 0)
            return;
        buffer->append(chunk, int(count));
    }
}

} // namespace FakeBinder::Messages
