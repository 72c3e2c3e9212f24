// SPDX-License-Identifier: BSD-3-Clause
#include "runtimecontrol.h"

#include "alienruntime.h"
#include "controlanswers.h"

#include <QJsonArray>
#include <QTimer>

#include <algorithm>

using ControlAnswers::done;
using ControlAnswers::refused;

namespace {

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
        {QStringLiteral("status"), &RuntimeControl::status},
        {QStringLiteral("calls"), &RuntimeControl::calls},
        {QStringLiteral("wait"), &RuntimeControl::wait},
        {QStringLiteral("crash"), &RuntimeControl::crash},
        {QStringLiteral("recover"), &RuntimeControl::recover},
    };
    const Command command = commands.value(request.value(QLatin1String("command")).toString());
    if (command)
        (this->*command)(request, respond);
    else
        m_runtime->ask(request, respond);
}

void RuntimeControl::status(const QJsonObject &, const Respond &respond)
{
    m_runtime->ask(statusRequest(), [this, respond](const QJsonObject &answer) {
        QJsonArray errors;
        for (const QJsonObject &event : m_runtime->log()->events()) {
            if (event.contains(QLatin1String("error")))
                errors.append(event);
        }
        respond(done({{QStringLiteral("sdk"), m_runtime->config().sdk},
            {QStringLiteral("services"), QJsonArray::fromStringList(m_runtime->services())},
            {QStringLiteral("apps"), answer.value(QLatin1String("apps")).toArray()},
            {QStringLiteral("pendingCalls"), answer.value(QLatin1String("pendingCalls")).toInt()},
            {QStringLiteral("errorCount"), m_runtime->log()->errorCount()},
            {QStringLiteral("errors"), errors}}));
    });
}

void RuntimeControl::calls(const QJsonObject &request, const Respond &respond)
{
    // an answer of the system server's brings along what it recorded before
    m_runtime->ask(statusRequest(), [this, request, respond](const QJsonObject &) {
        const bool all = request.value(QLatin1String("all")).toBool();
        QJsonArray calls;
        for (const QJsonObject &event : m_runtime->log()->events()) {
            if (all || event.value(QLatin1String("event")) == QLatin1String("call"))
                calls.append(event);
        }
        if (request.value(QLatin1String("clear")).toBool())
            m_runtime->log()->clear();
        respond(done({{QStringLiteral("calls"), calls}}));
    });
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

void RuntimeControl::crash(const QJsonObject &, const Respond &respond)
{
    if (m_runtime->crashServices())
        respondWhen([this] { return m_runtime->servicesAreGone(); }, respond);
    else
        respond(refused(QStringLiteral("the system server is dead")));
}

void RuntimeControl::recover(const QJsonObject &, const Respond &respond)
{
    if (m_runtime->recoverServices())
        respondWhen([this] { return m_runtime->servicesAreThere(); }, respond);
    else
        respond(refused(QStringLiteral("the system server is not dead")));
}

void RuntimeControl::respondWhen(const std::function<bool()> &holds, const Respond &respond)
{
    auto *waiting = new QObject(this);
    connect(m_runtime, &AlienRuntime::servicesChanged, waiting, [this, waiting, holds, respond] {
        if (!holds())
            return;
        m_runtime->disconnect(waiting);
        waiting->deleteLater();
        respond(done());
    });
}

QJsonObject RuntimeControl::statusRequest()
{
    return {{QStringLiteral("command"), QStringLiteral("status")}};
}
