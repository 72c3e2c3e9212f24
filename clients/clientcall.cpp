// SPDX-License-Identifier: BSD-3-Clause
#include "clients/clientcall.h"

ClientCall::ClientCall(GBinderClient *client)
    : m_client(client), m_request(gbinder_client_new_request(client)), m_parcel(m_request.get())
{
}

GBinderRemoteReply *ClientCall::transact(quint32 code)
{
    m_reply.reset(gbinder_client_transact_sync_reply(m_client, code, m_request.get(), &m_status));
    return m_reply.get();
}
