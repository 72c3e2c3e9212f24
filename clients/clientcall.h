// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderparcel.h"
#include "binder/gbinderhandles.h"

struct TransactionCodes;

/// One synchronous call on a client: fill parcel(), then transact() once. The usual way to call the
/// runtime, from a function that makes the call and reads the answer. AlienBinderTransaction is for
/// a call that must not block, or that lives on when the function has returned.
class ClientCall
{
public:
    /// @p client is not owned. Null, for a link that is down, makes a call that takes arguments and
    /// does nothing, without a word.
    explicit ClientCall(GBinderClient *client);

    /// The arguments.
    AlienBinderParcel &parcel() { return m_parcel; }

    /// Makes the call and blocks until it is answered. The reply belongs to this object; null
    /// when there is none.
    GBinderRemoteReply *transact(quint32 code);
    /// The same with the code for the runtime's SDK level, which is asked for with a link alone.
    GBinderRemoteReply *transact(const TransactionCodes &codes);

    /// How the call went: 0 for success and without a link, else a negative error.
    int status() const { return m_status; }

private:
    GBinderClient *m_client;
    GBinder::RemoteReply m_reply; // released behind the request
    GBinder::LocalRequest m_request;
    AlienBinderParcel m_parcel;
    int m_status = 0;
};
