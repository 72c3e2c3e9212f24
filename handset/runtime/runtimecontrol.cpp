// SPDX-License-Identifier: BSD-3-Clause
#include "runtimecontrol.h"

#include "alienruntime.h"
#include "launchercalls.h"

#include <QJsonArray>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace {

QJsonObject done(QJsonObject answer = {})
{
    answer.insert(QStringLiteral("ok"), true);
    return answer;
}

QJsonObject refused(const QString &reason)
{
    return {{QStringLiteral("ok"), false}, {QStringLiteral("error"), reason}};
}

bool isOneway(const QJsonObject &request)
{
    return request.value(QLatin1String("oneway")).toBool();
}

QString text(const QJsonObject &request, const char *key)
{
    return request.value(QLatin1String(key)).toString();
}

bool matches(const QJsonObject &event, const QJsonObject &wanted)
{
    const QStringList keys = wanted.keys();
    return std::all_of(keys.cbegin(), keys.cend(),
        [&event, &wanted](const QString &key) { return event.value(key) == wanted.value(key); });
}

} // namespace

RuntimeControl::RuntimeControl(AlienRuntime *runtime)
    : m_runtime(runtime), m_server([this](const QJsonObject &request, const Respond &respond) {
          handle(request, respond);
      })
{
}

void RuntimeControl::handle(const QJsonObject &request, const Respond &respond)
{
    using Command = void (RuntimeControl::*)(const QJsonObject &, const Respond &);
    static const QHash<QString, Command> commands{
        {QStringLiteral("announce"), &RuntimeControl::announce},
        {QStringLiteral("complete"), &RuntimeControl::complete},
        {QStringLiteral("remove"), &RuntimeControl::remove},
        {QStringLiteral("send-raw"), &RuntimeControl::sendRaw},
        {QStringLiteral("status"), &RuntimeControl::status},
        {QStringLiteral("calls"), &RuntimeControl::calls},
        {QStringLiteral("wait"), &RuntimeControl::wait},
        {QStringLiteral("apps"), &RuntimeControl::apps},
        {QStringLiteral("windows"), &RuntimeControl::windows},
        {QStringLiteral("timezone"), &RuntimeControl::timezone},
        {QStringLiteral("fail-next"), &RuntimeControl::failNext},
    };
    const QString name = text(request, "command");
    const Command command = commands.value(name);
    if (command)
        (this->*command)(request, respond);
    else
        respond(refused(QStringLiteral("unknown command \"%1\"").arg(name)));
}

void RuntimeControl::announce(const QJsonObject &request, const Respond &respond)
{
    AndroidApp app;
    if (request.contains(QLatin1String("app"))) {
        QString error;
        app = AndroidApp::fromJson(
            request.value(QLatin1String("app")).toObject(), text(request, "folder"), &error);
        if (error.isEmpty() && !m_runtime->apps()->add(app))
            error = QStringLiteral("could not store the app");
        if (!error.isEmpty()) {
            respond(refused(error));
            return;
        }
    } else {
        const QString package = text(request, "package");
        if (!m_runtime->apps()->contains(package)) {
            respond(refused(QStringLiteral("no app \"%1\"").arg(package)));
            return;
        }
        app = m_runtime->apps()->app(package);
    }
    QVector<LauncherCall> calls;
    for (const AndroidApp::Launcher &launcher : qAsConst(app.launchers))
        calls.append(LauncherCalls::added(app, launcher, isOneway(request)));
    send(calls, respond);
}

void RuntimeControl::complete(const QJsonObject &request, const Respond &respond)
{
    send({LauncherCalls::complete(isOneway(request))}, respond);
}

void RuntimeControl::remove(const QJsonObject &request, const Respond &respond)
{
    const QJsonValue package = request.value(QLatin1String("package"));
    if (package.isString() && !m_runtime->apps()->remove(package.toString())) {
        respond(refused(QStringLiteral("could not drop the app's file")));
        return;
    }
    if (request.value(QLatin1String("silent")).toBool())
        respond(done());
    else
        send({LauncherCalls::removed(package.toString(), isOneway(request))}, respond);
}

void RuntimeControl::sendRaw(const QJsonObject &request, const Respond &respond)
{
    const QByteArray interface =
        request.value(QLatin1String("interface")).toString(LauncherCalls::interface()).toLatin1();
    const QByteArray data = QByteArray::fromHex(text(request, "data").toLatin1());
    const auto code = quint32(request.value(QLatin1String("code")).toDouble());
    send({LauncherCalls::raw(code, interface, data, isOneway(request))}, respond);
}

void RuntimeControl::status(const QJsonObject &, const Respond &respond)
{
    QJsonArray errors;
    for (const QJsonObject &event : m_runtime->log()->events()) {
        if (event.contains(QLatin1String("error")))
            errors.append(event);
    }
    QJsonArray apps;
    const QList<AndroidApp> known = m_runtime->apps()->apps();
    for (const AndroidApp &app : known)
        apps.append(app.package);
    respond(done({{QStringLiteral("sdk"), m_runtime->config().sdk},
        {QStringLiteral("services"), QJsonArray::fromStringList(m_runtime->services())},
        {QStringLiteral("apps"), apps},
        {QStringLiteral("pendingCalls"), m_runtime->launcher()->pending()},
        {QStringLiteral("errorCount"), m_runtime->log()->errorCount()},
        {QStringLiteral("errors"), errors}}));
}

void RuntimeControl::calls(const QJsonObject &request, const Respond &respond)
{
    const bool all = request.value(QLatin1String("all")).toBool();
    QJsonArray calls;
    for (const QJsonObject &event : m_runtime->log()->events()) {
        if (all || text(event, "event") == QLatin1String("call"))
            calls.append(event);
    }
    if (request.value(QLatin1String("clear")).toBool())
        m_runtime->log()->clear();
    respond(done({{QStringLiteral("calls"), calls}}));
}

void RuntimeControl::wait(const QJsonObject &request, const Respond &respond)
{
    const QJsonObject wanted = request.value(QLatin1String("match")).toObject();
    const qint64 after = qint64(request.value(QLatin1String("after")).toDouble());
    const auto isWanted = [wanted, after](const QJsonObject &event) {
        return event.value(QLatin1String("seq")).toDouble() > double(after)
            && matches(event, wanted);
    };
    const QVector<QJsonObject> &events = m_runtime->log()->events();
    const auto found = std::find_if(events.cbegin(), events.cend(), isWanted);
    if (found != events.cend()) {
        respond(done({{QStringLiteral("found"), *found}}));
        return;
    }
    auto *timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [timer, respond] {
        respond(refused(QStringLiteral("no such event in time")));
        timer->deleteLater();
    });
    connect(m_runtime->log(), &EventLog::recorded, timer,
        [timer, respond, isWanted](const QJsonObject &event) {
            if (!timer->isActive() || !isWanted(event))
                return;
            timer->stop();
            respond(done({{QStringLiteral("found"), event}}));
            timer->deleteLater();
        });
    timer->start(int(request.value(QLatin1String("timeout")).toDouble(10) * 1000));
}

void RuntimeControl::apps(const QJsonObject &, const Respond &respond)
{
    QJsonObject found;
    const QList<AndroidApp> known = m_runtime->apps()->apps();
    for (const AndroidApp &app : known) {
        QJsonObject json = app.toJson();
        // icons are long, and nothing to read
        json.insert(QStringLiteral("launchers"), app.launchers.size());
        found.insert(app.package, json);
    }
    respond(done({{QStringLiteral("apps"), found}}));
}

void RuntimeControl::windows(const QJsonObject &request, const Respond &respond)
{
    const QJsonValue polls = request.value(QLatin1String("polls"));
    if (polls.isDouble())
        m_runtime->windows()->setPolls(polls.toInt());
    respond(done({{QStringLiteral("windows"),
        QJsonArray::fromStringList(m_runtime->windows()->packages())}}));
}

void RuntimeControl::timezone(const QJsonObject &, const Respond &respond)
{
    const QString zone = m_runtime->timeZone();
    respond(done({{QStringLiteral("timezone"), zone.isNull() ? QJsonValue() : QJsonValue(zone)}}));
}

void RuntimeControl::failNext(const QJsonObject &request, const Respond &respond)
{
    const QString name = text(request, "service");
    AndroidService *service = m_runtime->service(name);
    if (!service) {
        respond(refused(QStringLiteral("no service \"%1\"").arg(name)));
        return;
    }
    service->failNext({request.value(QLatin1String("status")).toInt(),
        request.value(QLatin1String("exception")).toInt()});
    respond(done());
}

void RuntimeControl::send(const QVector<LauncherCall> &calls, const Respond &respond)
{
    if (!m_runtime->launcher()->isOpen()) {
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
        m_runtime->launcher()->send(call, [records, count, respond](const QJsonObject &record) {
            records->append(record);
            if (records->size() == count)
                respond(done({{QStringLiteral("calls"), *records}}));
        });
    }
}
