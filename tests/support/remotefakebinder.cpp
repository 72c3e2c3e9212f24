// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/remotefakebinder.h"

#include "tests/support/agentconnection.h"
#include "tests/support/fakegbinder/messages.h"

#include <QJsonArray>

using namespace FakeBinder;

namespace {

QStringList toStrings(const QJsonValue &value)
{
    QStringList list;
    const QJsonArray array = value.toArray();
    for (const QJsonValue &text : array)
        list.append(text.toString());
    return list;
}

} // namespace

RemoteFakeBinder::RemoteFakeBinder(const QString &socketPath)
    : m_d(std::make_unique<AgentConnection>(socketPath))
{
}

RemoteFakeBinder::~RemoteFakeBinder() = default;

QString RemoteFakeBinder::socketPath() const
{
    return m_d->path;
}

void RemoteFakeBinder::setPresent(bool present)
{
    m_d->perform(
        {{QLatin1String("op"), QLatin1String("setPresent")}, {QLatin1String("flag"), present}});
}

void RemoteFakeBinder::setProtocol(Protocol protocol)
{
    m_d->perform({{QLatin1String("op"), QLatin1String("setProtocol")},
        {QLatin1String("flag"), protocol == Protocol::Aidl2}});
}

void RemoteFakeBinder::registerService(const QString &name, const Handler &handler, Notice notice)
{
    m_d->perform({{QLatin1String("op"), QLatin1String("registerService")},
        {QLatin1String("name"), name}, {QLatin1String("handler"), m_d->keep(handler)},
        {QLatin1String("silent"), notice == Notice::None}});
}

void RemoteFakeBinder::killService(const QString &name, Notice notice)
{
    m_d->perform({{QLatin1String("op"), QLatin1String("killService")},
        {QLatin1String("name"), name}, {QLatin1String("silent"), notice == Notice::None}});
}

void RemoteFakeBinder::failClients(const QString &service, bool fail)
{
    m_d->perform({{QLatin1String("op"), QLatin1String("failClients")},
        {QLatin1String("name"), service}, {QLatin1String("flag"), fail}});
}

bool RemoteFakeBinder::waitForPublished(const QString &name)
{
    return m_d->waitFor([this, &name] {
        for (const PublishedService &service : qAsConst(m_d->published)) {
            if (service.name == name)
                return true;
        }
        return false;
    });
}

bool RemoteFakeBinder::waitForUnpublished(const QString &name)
{
    return m_d->waitFor([this, &name] {
        for (const PublishedService &service : qAsConst(m_d->published)) {
            if (service.name == name)
                return false;
        }
        return true;
    });
}

QVector<PublishedService> RemoteFakeBinder::published() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->published;
}

Answer RemoteFakeBinder::transact(const QString &publishedName, const Call &call)
{
    return Messages::answerFrom(
        m_d->perform({{QLatin1String("op"), QLatin1String("transact")},
                         {QLatin1String("name"), publishedName},
                         {QLatin1String("call"), Messages::toJson(call)}})
            .toObject());
}

Answer RemoteFakeBinder::transactObject(quint32 objectId, const Call &call)
{
    return Messages::answerFrom(
        m_d->perform({{QLatin1String("op"), QLatin1String("transactObject")},
                         {QLatin1String("object"), qint64(objectId)},
                         {QLatin1String("call"), Messages::toJson(call)}})
            .toObject());
}

void RemoteFakeBinder::settle()
{
    m_d->perform({{QLatin1String("op"), QLatin1String("settle")}});
}

void RemoteFakeBinder::quitDaemon(int exitCode)
{
    m_d->perform(
        {{QLatin1String("op"), QLatin1String("quit")}, {QLatin1String("exitCode"), exitCode}});
}

QStringList RemoteFakeBinder::ledger()
{
    return toStrings(m_d->perform({{QLatin1String("op"), QLatin1String("ledger")}}));
}

void RemoteFakeBinder::clearLedger()
{
    m_d->perform({{QLatin1String("op"), QLatin1String("clearLedger")}});
}

QStringList RemoteFakeBinder::leaks()
{
    return toStrings(m_d->perform({{QLatin1String("op"), QLatin1String("leaks")}}));
}

QStringList RemoteFakeBinder::errors()
{
    return toStrings(m_d->perform({{QLatin1String("op"), QLatin1String("errors")}}));
}

QVector<Request> RemoteFakeBinder::requests() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->requests;
}

void RemoteFakeBinder::clearRequests()
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->requests.clear();
}

bool RemoteFakeBinder::waitForRequest(const QString &service, quint32 code, int count)
{
    return m_d->waitFor([this, &service, code, count] {
        int found = 0;
        for (const Request &request : qAsConst(m_d->requests))
            found += request.service == service && request.code == code ? 1 : 0;
        return found >= count;
    });
}
