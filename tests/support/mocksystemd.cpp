// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/mocksystemd.h"

#include "tests/support/systemdobject.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <algorithm>
#include <chrono>

namespace {

const QString ActiveState = QStringLiteral("ActiveState");
const QString SubState = QStringLiteral("SubState");
const QString UnitFileState = QStringLiteral("UnitFileState");

QString textOf(const QVariant &value)
{
    if (value.type() == QVariant::StringList)
        return QLatin1Char('[') + value.toStringList().join(QLatin1String(", ")) + QLatin1Char(']');
    return value.toString();
}

} // namespace

MockSystemd::MockSystemd() : m_d(std::make_unique<SystemdObject>()) { }

void MockSystemd::settleListeners()
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    QCoreApplication::processEvents();
    bus.interface()->isServiceRegistered(QStringLiteral("org.freedesktop.systemd1"));
}

MockSystemd::~MockSystemd() = default;

QString MockSystemd::unitPath()
{
    return QStringLiteral("/org/freedesktop/systemd1/unit/aliendalvik_2eservice");
}

void MockSystemd::setUnitState(const QString &active, const QString &sub)
{
    m_d->change({{ActiveState, active}, {SubState, sub}}, true);
}

void MockSystemd::setUnitFileState(const QString &state)
{
    m_d->change({{UnitFileState, state}}, true);
}

void MockSystemd::setUnitStateSilently(const QString &active, const QString &sub)
{
    m_d->change({{ActiveState, active}, {SubState, sub}}, false);
}

void MockSystemd::setUnitFileStateSilently(const QString &state)
{
    m_d->change({{UnitFileState, state}}, false);
}

void MockSystemd::removeUnitProperty(const QString &name)
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->unit.remove(name);
}

void MockSystemd::emitPropertiesChanged(const QString &interface, const QVariantMap &changed,
    const QStringList &invalidated, const QString &path)
{
    m_d->emitChanged(interface, changed, invalidated, path);
}

void MockSystemd::announceDuringGetAll(const QString &active, const QString &sub)
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->changeDuringGetAll = {{ActiveState, active}, {SubState, sub}};
}

void MockSystemd::failLoadUnit(const QString &message)
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->loadError = message;
}

void MockSystemd::failGetAll(bool fail)
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->getAllFails = fail;
}

void MockSystemd::failSubscribe(bool fail)
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->subscribeFails = fail;
}

void MockSystemd::setFollowsRequests(bool follows)
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->followsRequests = follows;
}

bool MockSystemd::isSubscribed() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->isSubscribed;
}

QVector<MockSystemd::Call> MockSystemd::calls() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->calls;
}

QStringList MockSystemd::callTexts() const
{
    QStringList texts;
    for (const Call &call : calls()) {
        QStringList arguments;
        for (const QVariant &argument : call.arguments)
            arguments.append(textOf(argument));
        texts.append(
            QStringLiteral("%1(%2)").arg(call.method, arguments.join(QLatin1String(", "))));
    }
    return texts;
}

void MockSystemd::clearCalls()
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    m_d->calls.clear();
}

bool MockSystemd::waitForCall(const QString &method, int deadline)
{
    std::unique_lock<std::mutex> lock(m_d->mutex);
    return m_d->called.wait_for(lock, std::chrono::milliseconds(deadline), [this, &method] {
        return std::any_of(m_d->calls.cbegin(), m_d->calls.cend(),
            [&method](const Call &call) { return call.method == method; });
    });
}
