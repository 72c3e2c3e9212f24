// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbindertransaction.h"

#include "binder/logging.h"

#include <utility>

struct AlienBinderTransaction::Call
{
    AlienBinderTransaction *transaction; // null once the call has been given up
    std::shared_ptr<void> held;
    gulong id{};
};

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
    cancel();
    m_request.reset(); // before the reply
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
    if (!m_client || !m_request || m_reply || m_call)
        return status;
    if (m_oneway)
        return gbinder_client_transact_sync_oneway(m_client, m_code, m_request.get());
    keepReply(gbinder_client_transact_sync_reply(m_client, m_code, m_request.get(), &status));
    return status;
}

bool AlienBinderTransaction::start(const std::shared_ptr<void> &heldUntilAnswered)
{
    if (!m_client || !m_request || m_reply || m_call)
        return false;
    auto call = std::make_unique<Call>(Call{this, heldUntilAnswered});
    m_calledClient.reset(gbinder_client_ref(m_client));
    call->id = gbinder_client_transact(
        m_client, m_code, m_oneway ? GBINDER_TX_FLAG_ONEWAY : 0, m_request.get(),
        &AlienBinderTransaction::onReply, [](gpointer done) { delete static_cast<Call *>(done); },
        call.get());
    if (!call->id) {
        m_calledClient.reset();
        return false;
    }
    m_call = call.release();
    return true;
}

void AlienBinderTransaction::onReply(
    GBinderClient *client, GBinderRemoteReply *reply, int status, void *call)
{
    Q_UNUSED(client)
    AlienBinderTransaction *const self = static_cast<Call *>(call)->transaction;
    if (!self)
        return;
    self->m_call = nullptr;
    self->m_calledClient.reset();
    if (!self->m_oneway)
        self->keepReply(gbinder_remote_reply_ref(reply));
    Q_EMIT self->finished(status);
}

void AlienBinderTransaction::keepReply(GBinderRemoteReply *reply)
{
    m_reply.reset(reply);
    if (!m_reply)
        qCDebug(binderLog) << "No reply available";
}

void AlienBinderTransaction::cancel()
{
    if (!m_call)
        return;
    m_call->transaction = nullptr;
    gbinder_client_cancel(m_calledClient.get(), std::exchange(m_call, nullptr)->id);
    m_calledClient.reset();
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
    if (connected)
        return;
    m_client = nullptr;
    if (!m_call)
        return;
    cancel();
    Q_EMIT finished(-1);
}
