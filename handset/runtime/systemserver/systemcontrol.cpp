// SPDX-License-Identifier: BSD-3-Clause
#include "systemserver/systemcontrol.h"

#include "controlanswers.h"
#include "launchercalls.h"
#include "systemserver/systemserver.h"

#include <QHash>
#include <QJsonArray>

#include <memory>

using ControlAnswers::done;
using ControlAnswers::refused;

namespace {

bool isOneway(const QJsonObject &request)
{
    return request.value(QLatin1String("oneway")).toBool();
}

QString text(const QJsonObject &request, const char *key)
{
    return request.value(QLatin1String(key)).toString();
}

} // namespace

void SystemControl::handle(const QJsonObject &request, const Respond &respond)
{
    using Command = void (SystemControl::*)(const QJsonObject &, const Respond &);
    static const QHash<QString, Command> commands{
        {QStringLiteral("announce"), &SystemControl::announce},
        {QStringLiteral("complete"), &SystemControl::complete},
        {QStringLiteral("remove"), &SystemControl::remove},
        {QStringLiteral("send-raw"), &SystemControl::sendRaw},
        {QStringLiteral("status"), &SystemControl::status},
        {QStringLiteral("apps"), &SystemControl::apps},
        {QStringLiteral("windows"), &SystemControl::windows},
        {QStringLiteral("timezone"), &SystemControl::timezone},
        {QStringLiteral("fail-next"), &SystemControl::failNext},
        {QStringLiteral("clear-delay"), &SystemControl::clearDelay},
        {QStringLiteral("hold"), &SystemControl::hold},
        {QStringLiteral("release"), &SystemControl::release},
        {QStringLiteral("launcher-registered"), &SystemControl::launcherRegistered},
    };
    const QString name = text(request, "command");
    const Command command = commands.value(name);
    if (command)
        (this->*command)(request, respond);
    else
        respond(refused(QStringLiteral("unknown command \"%1\"").arg(name)));
}

void SystemControl::announce(const QJsonObject &request, const Respond &respond)
{
    AndroidApp app;
    if (request.contains(QLatin1String("app"))) {
        QString error;
        app = AndroidApp::fromJson(
            request.value(QLatin1String("app")).toObject(), text(request, "folder"), &error);
        if (error.isEmpty() && !m_server->apps()->add(app))
            error = QStringLiteral("could not store the app");
        if (!error.isEmpty()) {
            respond(refused(error));
            return;
        }
    } else {
        const QString package = text(request, "package");
        if (!m_server->apps()->contains(package)) {
            respond(refused(QStringLiteral("no app \"%1\"").arg(package)));
            return;
        }
        app = m_server->apps()->app(package);
    }
    QVector<LauncherCall> calls;
    for (const AndroidApp::Launcher &launcher : qAsConst(app.launchers))
        calls.append(LauncherCalls::added(app, launcher, isOneway(request)));
    send(calls, respond);
}

void SystemControl::complete(const QJsonObject &request, const Respond &respond)
{
    send({LauncherCalls::complete(isOneway(request))}, respond);
}

void SystemControl::remove(const QJsonObject &request, const Respond &respond)
{
    const QJsonValue package = request.value(QLatin1String("package"));
    if (package.isString() && !m_server->apps()->remove(package.toString())) {
        respond(refused(QStringLiteral("could not drop the app's file")));
        return;
    }
    if (request.value(QLatin1String("silent")).toBool())
        respond(done());
    else
        send({LauncherCalls::removed(package.toString(), isOneway(request))}, respond);
}

void SystemControl::sendRaw(const QJsonObject &request, const Respond &respond)
{
    const QString interface =
        request.value(QLatin1String("interface")).toString(LauncherCalls::interface());
    const QByteArray data = QByteArray::fromHex(text(request, "data").toLatin1());
    const auto code = quint32(request.value(QLatin1String("code")).toDouble());
    send({LauncherCalls::raw(code, interface, data, isOneway(request))}, respond);
}

void SystemControl::apps(const QJsonObject &, const Respond &respond)
{
    QJsonObject found;
    const QList<AndroidApp> known = m_server->apps()->apps();
    for (const AndroidApp &app : known) {
        QJsonObject json = app.toJson();
        // icons are long, and nothing to read
        json.insert(QStringLiteral("launchers"), app.launchers.size());
        found.insert(app.package, json);
    }
    respond(done({{QStringLiteral("apps"), found}}));
}

void SystemControl::windows(const QJsonObject &request, const Respond &respond)
{
    const QJsonValue polls = request.value(QLatin1String("polls"));
    if (polls.isDouble())
        m_server->windows()->setPolls(polls.toInt());
    respond(done({{QStringLiteral("windows"),
        QJsonArray::fromStringList(m_server->windows()->packages())}}));
}

void SystemControl::timezone(const QJsonObject &, const Respond &respond)
{
    const QString zone = m_server->timeZone();
    respond(done({{QStringLiteral("timezone"), zone.isNull() ? QJsonValue() : QJsonValue(zone)}}));
}

void SystemControl::status(const QJsonObject &, const Respond &respond)
{
    QJsonArray apps;
    const QList<AndroidApp> known = m_server->apps()->apps();
    for (const AndroidApp &app : known)
        apps.append(app.package);
    respond(done({{QStringLiteral("apps"), apps},
        {QStringLiteral("pendingCalls"), m_server->launcher()->pending()}}));
}

void SystemControl::failNext(const QJsonObject &request, const Respond &respond)
{
    AndroidService *service = serviceOf(request, respond);
    if (!service)
        return;
    service->failNext({request.value(QLatin1String("status")).toInt(),
        request.value(QLatin1String("exception")).toInt()});
    respond(done());
}

void SystemControl::clearDelay(const QJsonObject &request, const Respond &respond)
{
    m_server->installer()->setClearDelay(request.value(QLatin1String("delay")).toInt());
    respond(done());
}

void SystemControl::hold(const QJsonObject &request, const Respond &respond)
{
    AndroidService *service = serviceOf(request, respond);
    if (!service)
        return;
    const QJsonValue delay = request.value(QLatin1String("delay"));
    service->heldCalls()->hold(delay.isDouble() ? std::optional<int>(delay.toInt()) : std::nullopt);
    respond(done());
}

void SystemControl::release(const QJsonObject &request, const Respond &respond)
{
    AndroidService *service = serviceOf(request, respond);
    if (!service)
        return;
    const int held = service->heldCalls()->count();
    service->heldCalls()->release();
    respond(done({{QStringLiteral("released"), held}}));
}

void SystemControl::launcherRegistered(const QJsonObject &request, const Respond &respond)
{
    m_server->setLauncherRegistered(request.value(QLatin1String("registered")).toBool());
    respond(done());
}

AndroidService *SystemControl::serviceOf(const QJsonObject &request, const Respond &respond) const
{
    const QString name = text(request, "service");
    AndroidService *service = m_server->service(name);
    if (!service)
        respond(refused(QStringLiteral("no service \"%1\"").arg(name)));
    return service;
}

void SystemControl::send(const QVector<LauncherCall> &calls, const Respond &respond)
{
    if (!m_server->launcher()->isOpen()) {
        respond(refused(QStringLiteral("\"alien.launcher\" is not registered")));
        return;
    }
    if (calls.isEmpty()) {
        respond(done({{QStringLiteral("calls"), QJsonArray()}}));
        return;
    }
    const auto records = std::make_shared<QJsonArray>();
    const int count = calls.size();
    for (const LauncherCall &call : calls) {
        m_server->launcher()->send(call, [records, count, respond](const QJsonObject &record) {
            records->append(record);
            if (records->size() == count)
                respond(done({{QStringLiteral("calls"), *records}}));
        });
    }
}
