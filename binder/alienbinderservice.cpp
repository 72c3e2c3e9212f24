// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderservice.h"

#include "binder/localrequest.h"
#include "runtime/logging.h"
#include "runtime/servicecontroller.h"

AlienBinderService::AlienBinderService(
    const char *name, const char *interface, const char *device, QObject *parent)
    : QObject(parent), m_device(device), m_interface(interface), m_name(name)
{
    ServiceController *const controller = ServiceController::instance();
    connect(controller, &ServiceController::serviceStateChanged, this,
        [this] { onServiceStateChanged(); });
    const QString state = controller->serviceState();
    if (state == QLatin1String(UnitState::activating) || state == QLatin1String(UnitState::active))
        onServiceStateChanged(true);
}

AlienBinderService::~AlienBinderService()
{
    AlienBinderService::stop();
}

void AlienBinderService::stop()
{
    m_serviceNameHandle.reset();
    m_localObject.reset();
    m_serviceManager.reset();
}

GBinderLocalReply *AlienBinderService::onTransact(
    GBinderRemoteRequest *request, quint32 code, quint32 flags, int *status)
{
    return handleLocalRequest(m_localObject.get(), request, flags, status,
        [this, code](AlienBinderParcel *in, AlienBinderParcel *out) {
            return processRequest(code, in, out);
        });
}

bool AlienBinderService::processRequest(quint32 code, AlienBinderParcel *in, AlienBinderParcel *out)
{
    Q_UNUSED(code)
    Q_UNUSED(in)
    Q_UNUSED(out)
    qCCritical(serviceLog) << "ProcessRequest not implemented for " << m_name;
    return false;
}

void AlienBinderService::onServiceStateChanged(bool forceStartAttempt)
{
    const QString state = ServiceController::instance()->serviceState();
    if (forceStartAttempt || state == QLatin1String(UnitState::activating))
        publish();
    else if (state == QLatin1String(UnitState::deactivating))
        stop();
}

GBinderLocalReply *AlienBinderService::transact(GBinderLocalObject *object,
    GBinderRemoteRequest *request, guint code, guint flags, int *status, void *service)
{
    Q_UNUSED(object)
    return static_cast<AlienBinderService *>(service)->onTransact(request, code, flags, status);
}

void AlienBinderService::publish()
{
    if (!m_serviceManager)
        m_serviceManager.reset(gbinder_servicemanager_new(m_device));
    if (!m_serviceManager) {
        qCWarning(serviceLog) << "Unable to find Alien service manager for" << m_name;
        return;
    }
    if (!m_localObject)
        m_localObject.reset(gbinder_servicemanager_new_local_object(
            m_serviceManager.get(), m_interface, &AlienBinderService::transact, this));
    if (!m_serviceNameHandle) {
        qCDebug(serviceLog) << "Registering Alien service for" << m_name;
        m_serviceNameHandle.reset(
            gbinder_servicename_new(m_serviceManager.get(), m_localObject.get(), m_name));
    }
}
