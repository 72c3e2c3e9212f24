// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindertransaction.h"

#include "binder/logging.h"

AlienBinderTransaction::AlienBinderTransaction(
    GBinderClient *client, quint32 code, bool oneway, QObject *parent)
    : QObject(parent),
      m_client(client),
      m_code(code),
      m_oneway(oneway),
      m_request(gbinder_client_new_request(client))
{
}

AlienBinderTransaction::~AlienBinderTransaction()
{
    qCDebug(binderLog) << "Destroying transaction" << m_code;
    m_request.reset();
    m_reply.reset();
}

AlienBinderParcel *AlienBinderTransaction::inputParcel()
{
    if (!m_input && m_client && m_request)
        m_input = std::make_unique<AlienBinderParcel>(m_request.get());
    if (m_input)
        return m_input.get();
    qCWarning(binderLog) << "Cannot create input parcel. Returning empty";
    return &m_empty;
}

qint32 AlienBinderTransaction::execute()
{
    int status = -1;
    if (!m_client || !m_request || m_reply)
        return status;
    if (m_oneway)
        return gbinder_client_transact_sync_oneway(m_client, m_code, m_request.get());
    m_reply.reset(gbinder_client_transact_sync_reply(m_client, m_code, m_request.get(), &status));
    if (!m_reply)
        qCDebug(binderLog) << "No reply available";
    return status;
}

AlienBinderParcel *AlienBinderTransaction::outputParcel()
{
    if (!m_output && m_client && m_reply && !m_oneway)
        m_output = std::make_unique<AlienBinderParcel>(m_reply.get());
    if (m_output)
        return m_output.get();
    qCWarning(binderLog) << "Cannot create output parcel. Returning empty";
    return &m_empty;
}

void AlienBinderTransaction::onConnectionChanged(bool connected)
{
    if (!connected)
        m_client = nullptr;
}
