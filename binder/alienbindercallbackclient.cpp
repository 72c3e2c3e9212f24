// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindercallbackclient.h"

#include "binder/alienbindertransaction.h"

AlienBinderCallbackClient *AlienBinderCallbackClient::create(
    AlienBinderDeathListener *listener, GBinderRemoteObject *remote, const char *interface)
{
    return remote ? new AlienBinderCallbackClient(listener, remote, interface) : nullptr;
}

AlienBinderCallbackClient::AlienBinderCallbackClient(
    AlienBinderDeathListener *listener, GBinderRemoteObject *remote, const char *interface)
    : m_listener(listener),
      m_remote(remote),
      m_client(gbinder_client_new(remote, interface)),
      m_death(GBinder::watchDeath(remote, &AlienBinderCallbackClient::onDeath, this))
{
}

AlienBinderCallbackClient::~AlienBinderCallbackClient()
{
    m_client.reset(); // before the death watch
}

AlienBinderTransaction *AlienBinderCallbackClient::transaction(quint32 code, bool oneway)
{
    if (!m_client)
        return nullptr;
    auto *const transaction = new AlienBinderTransaction(m_client.get(), code, oneway, this);
    connect(this, &AlienBinderCallbackClient::onConnectionChanged, transaction,
        &AlienBinderTransaction::onConnectionChanged);
    return transaction;
}

void AlienBinderCallbackClient::onDeath(GBinderRemoteObject *remote, void *client)
{
    Q_UNUSED(remote)
    auto *const self = static_cast<AlienBinderCallbackClient *>(client);
    self->m_listener->died(self);
    Q_EMIT self->onConnectionChanged(false);
    delete self;
}
