// SPDX-License-Identifier: BSD-3-Clause
#include "clients/clientcall.h"

#include "clients/transactioncodes.h"

ClientCall::ClientCall(GBinderClient *client)
    : m_client(client),
      m_request(client ? gbinder_client_new_request(client) : nullptr),
      m_parcel(m_request.get())
{
}

GBinderRemoteReply *ClientCall::transact(quint32 code)
{
    if (!m_client)
        return nullptr;
    m_reply.reset(gbinder_client_transact_sync_reply(m_client, code, m_request.get(), &m_status));
    return m_reply.get();
}

GBinderRemoteReply *ClientCall::transact(const TransactionCodes &codes)
{
    return m_client ? transact(transactionCode(codes)) : nullptr;
}
