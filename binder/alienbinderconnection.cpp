// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderconnection.h"

#include "binder/alienbindercallback.h"
#include "binder/alienbindertransaction.h"
#include "binder/device.h"
#include "binder/logging.h"
#include "runtime/servicecontroller.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto onDemandLifetime = 5000ms;
constexpr auto firstRetry = 1000ms;
constexpr auto laterRetries = 2000ms;

bool isRuntimeActive()
{
    return ServiceController::instance()->serviceState() == QLatin1String(UnitState::active);
}

} // namespace

void AlienBinderConnection::WatchedRemote::release()
{
    death.reset();
    object.reset();
}

AlienBinderConnection::AlienBinderConnection(
    const char *serviceName, const char *interface, bool persistent, QObject *parent)
    : QObject(parent), m_serviceName(serviceName), m_interface(interface), m_persistent(persistent)
{
    m_timer.setInterval(onDemandLifetime);
    m_timer.setTimerType(Qt::PreciseTimer); // not before a user's own deadline of the same length
    connect(ServiceController::instance(), &ServiceController::serviceStateChanged, this,
        &AlienBinderConnection::onServiceStateChanged);
    connect(&m_timer, &QTimer::timeout, this, &AlienBinderConnection::onTimeout);
    connect(&m_retryTimer, &QTimer::timeout, this, &AlienBinderConnection::onRetry);
    onServiceStateChanged();
}

AlienBinderConnection::~AlienBinderConnection()
{
    qCDebug(binderLog) << "Destroying" << m_serviceName << "connection";
    disconnectFromService(Manager::Release);
}

GBinderClient *AlienBinderConnection::client()
{
    if (!m_client && m_serviceManager)
        connectToService();
    return m_client.get();
}

AlienBinderTransaction *AlienBinderConnection::transaction(quint32 code, bool oneway)
{
    GBinderClient *const link = client();
    if (!link)
        return nullptr;
    auto *const transaction = new AlienBinderTransaction(link, code, oneway, this);
    connect(this, &AlienBinderConnection::connectionChanged, transaction,
        &AlienBinderTransaction::onConnectionChanged);
    return transaction;
}

AlienBinderCallback *AlienBinderConnection::callback(
    const char *interface, AlienBinderRequestHandler *handler)
{
    if (!client())
        return nullptr;
    auto *const callback =
        new AlienBinderCallback(m_serviceManager.get(), interface, handler, this);
    connect(this, &AlienBinderConnection::connectionChanged, callback,
        &AlienBinderCallback::onConnectionChanged);
    return callback;
}

void AlienBinderConnection::onServiceStateChanged()
{
    if (isRuntimeActive())
        start();
    else if (ServiceController::instance()->serviceState()
        == QLatin1String(UnitState::deactivating))
        disconnectFromService(Manager::Release);
    retryWhileMissing();
}

void AlienBinderConnection::onTimeout()
{
    qCDebug(binderLog) << "Timing out" << m_serviceName;
    disconnectFromService(Manager::Keep);
}

void AlienBinderConnection::onRetry()
{
    m_retryTimer.setInterval(laterRetries);
    connectToService();
}

void AlienBinderConnection::onRegistration(
    GBinderServiceManager *manager, const char *name, void *connection)
{
    Q_UNUSED(manager)
    Q_UNUSED(name)
    static_cast<AlienBinderConnection *>(connection)->connectToService();
}

void AlienBinderConnection::onDeath(GBinderRemoteObject *remote, void *connection)
{
    Q_UNUSED(remote)
    auto *const self = static_cast<AlienBinderConnection *>(connection);
    qCWarning(binderLog) << self->m_serviceName << "died! Trying to reconnect.";
    self->disconnectFromService(Manager::Keep);
    self->start();
    self->retryWhileMissing();
}

void AlienBinderConnection::start()
{
    if (!m_serviceManager)
        m_serviceManager.reset(gbinder_servicemanager_new(runtimeBinderDevice));
    if (!m_serviceManager) {
        qCCritical(binderLog) << "Could not get service manager for" << m_serviceName;
        disconnectFromService(Manager::Keep);
        return;
    }
    if (m_registrationHandlerId || !m_persistent)
        return;

    qCDebug(binderLog) << "Connecting to Alien service:" << m_serviceName;
    m_registrationHandlerId = gbinder_servicemanager_add_registration_handler(
        m_serviceManager.get(), m_serviceName, &AlienBinderConnection::onRegistration, this);
    connectToService();
}

void AlienBinderConnection::connectToService()
{
    GBinderRemoteObject *const found =
        gbinder_servicemanager_get_service_sync(m_serviceManager.get(), m_serviceName, nullptr);
    if (m_remote.object)
        m_replacedRemotes.push_back(std::exchange(m_remote, {}));
    if (!found) {
        qCDebug(binderLog) << "Could not find remote object for" << m_serviceName;
        return;
    }
    m_remote.object.reset(gbinder_remote_object_ref(found));
    qCDebug(binderLog) << "Connected to Alien Service" << m_serviceName;
    m_remote.death = GBinder::watchDeath(found, &AlienBinderConnection::onDeath, this);

    if (m_client)
        m_replacedClients.push_back(std::move(m_client));
    m_client.reset(gbinder_client_new(found, m_interface));
    if (!m_client) {
        qCDebug(binderLog) << "Could not create client for" << m_serviceName;
        disconnectFromService(Manager::Keep);
        retryWhileMissing();
        return;
    }

    removeRegistrationHandler();
    m_retryTimer.stop();
    if (!m_persistent)
        m_timer.start();
    Q_EMIT connectionChanged(true);
}

// Android's service manager keeps the names of dead services, so that libgbinder, which
// compares the names, does not announce a service that comes back.
void AlienBinderConnection::retryWhileMissing()
{
    if (!m_persistent || !m_serviceManager || m_client || !isRuntimeActive())
        m_retryTimer.stop();
    else if (!m_retryTimer.isActive())
        m_retryTimer.start(firstRetry);
}

void AlienBinderConnection::disconnectFromService(Manager manager)
{
    m_timer.stop();
    m_client.reset();
    if (manager == Manager::Release)
        m_replacedClients.clear();
    Q_EMIT connectionChanged(false);
    m_remote.release();
    if (manager == Manager::Release)
        releaseReplacedRemotes();
    removeRegistrationHandler();
    if (manager == Manager::Release)
        m_serviceManager.reset();
}

void AlienBinderConnection::releaseReplacedRemotes()
{
    for (WatchedRemote &remote : std::exchange(m_replacedRemotes, {}))
        remote.release();
}

void AlienBinderConnection::removeRegistrationHandler()
{
    if (m_registrationHandlerId)
        gbinder_servicemanager_remove_handler(
            m_serviceManager.get(), std::exchange(m_registrationHandlerId, 0));
}
