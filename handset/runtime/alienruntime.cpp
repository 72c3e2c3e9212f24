// SPDX-License-Identifier: BSD-3-Clause
#include "alienruntime.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QTimer>

#include <algorithm>
#include <utility>

#include <systemd/sd-daemon.h>

namespace {

constexpr int FirstSdk = 27;
constexpr int LastSdk = 29;

const QString &launcherService()
{
    static const QString name = QStringLiteral("alien.launcher");
    return name;
}

QJsonObject refusal()
{
    return {{QStringLiteral("ok"), false},
        {QStringLiteral("error"), QStringLiteral("the system server is dead")}};
}

} // namespace

AlienRuntime::AlienRuntime(const RuntimeConfig &config)
    : m_config(config),
      m_serviceManager(QStringLiteral("alien-servicemanager")),
      m_systemServer(QStringLiteral("alien-systemserver"))
{
    connect(
        &m_serviceManager, &RuntimeProcess::received, this, &AlienRuntime::onServiceManagerEvent);
    connect(&m_serviceManager, &RuntimeProcess::stopped, this, &AlienRuntime::fail);
    connect(&m_systemServer, &RuntimeProcess::received, this, &AlienRuntime::onSystemServerLine);
    connect(&m_systemServer, &RuntimeProcess::stopped, this, &AlienRuntime::onSystemServerStopped);
}

void AlienRuntime::start()
{
    if (m_config.sdk < FirstSdk || m_config.sdk > LastSdk)
        fail(QStringLiteral("/opt/alien/build.prop names no SDK level from 27 to 29"));
    else
        m_serviceManager.start(m_config.sdk);
}

void AlienRuntime::stop()
{
    sd_notify(0, "STOPPING=1");
    m_log.record({{QStringLiteral("event"), QStringLiteral("stopping")}});
    QTimer::singleShot(m_config.stopDelay, this, [] { QCoreApplication::quit(); });
}

void AlienRuntime::ask(const QJsonObject &request, const Respond &respond)
{
    if (!m_systemServer.isRunning()) {
        respond(refusal());
        return;
    }
    m_asked.insert(++m_lastNumber, respond);
    QJsonObject line = request;
    line.insert(QStringLiteral("number"), m_lastNumber);
    m_systemServer.send(line);
}

bool AlienRuntime::crashServices()
{
    if (!m_systemServer.isRunning())
        return false;
    m_crashing = true;
    m_systemServer.kill();
    return true;
}

bool AlienRuntime::recoverServices()
{
    if (!servicesAreGone())
        return false;
    startSystemServer();
    return true;
}

bool AlienRuntime::servicesAreThere() const
{
    return !m_own.isEmpty()
        && std::all_of(m_own.cbegin(), m_own.cend(),
            [this](const QString &own) { return m_registered.contains(own); });
}

bool AlienRuntime::servicesAreGone() const
{
    return !m_systemServer.isRunning()
        && std::none_of(m_own.cbegin(), m_own.cend(),
            [this](const QString &own) { return m_registered.contains(own); });
}

void AlienRuntime::startSystemServer()
{
    m_crashing = false;
    m_systemServer.start(m_config.sdk);
    if (m_registered.contains(launcherService()))
        passOn(true);
}

void AlienRuntime::passOn(bool launcherRegistered)
{
    if (m_systemServer.isRunning()) {
        m_systemServer.send({{QStringLiteral("command"), QStringLiteral("launcher-registered")},
            {QStringLiteral("registered"), launcherRegistered}});
    }
}

void AlienRuntime::onServiceManagerEvent(const QJsonObject &event)
{
    m_log.record(event);
    const QString kind = event.value(QLatin1String("event")).toString();
    const QString service = event.value(QLatin1String("service")).toString();
    if (kind == QLatin1String("contextmanager")) {
        startSystemServer();
        return;
    }
    const bool registered = kind == QLatin1String("registered");
    if (!registered && kind != QLatin1String("died"))
        return;
    m_registered.removeAll(service);
    if (registered)
        m_registered.append(service);
    m_registered.sort();
    if (service == launcherService())
        passOn(registered);
    changeServices();
}

void AlienRuntime::onSystemServerLine(const QJsonObject &line)
{
    const QJsonValue answer = line.value(QLatin1String("answer"));
    if (answer.isObject()) {
        const Respond respond = m_asked.take(line.value(QLatin1String("number")).toInt());
        if (respond)
            respond(answer.toObject());
        return;
    }
    m_log.record(line);
    if (line.value(QLatin1String("event")) == QLatin1String("published")) {
        m_own = line.value(QLatin1String("services")).toVariant().toStringList();
        changeServices();
    }
}

void AlienRuntime::onSystemServerStopped(const QString &reason)
{
    const QHash<int, Respond> asked = std::exchange(m_asked, {});
    for (const Respond &respond : asked)
        respond(refusal());
    if (m_crashing)
        Q_EMIT servicesChanged();
    else
        fail(reason);
}

void AlienRuntime::changeServices()
{
    if (servicesAreThere() && !m_becomingReady) {
        m_becomingReady = true;
        QTimer::singleShot(m_config.readyDelay, this, &AlienRuntime::becomeReady);
    }
    Q_EMIT servicesChanged();
}

void AlienRuntime::becomeReady()
{
    m_log.record({{QStringLiteral("event"), QStringLiteral("ready")},
        {QStringLiteral("sdk"), m_config.sdk}});
    sd_notify(0, "READY=1");
}

void AlienRuntime::fail(const QString &reason)
{
    m_log.record(
        {{QStringLiteral("event"), QStringLiteral("failed")}, {QStringLiteral("error"), reason}});
    // the event loop may not run yet
    QTimer::singleShot(0, this, [] { QCoreApplication::exit(1); });
}
