// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderparcel.h"
#include "binder/gbinderhandles.h"

/// The one Android user that the runtime has (UserHandle.USER_SYSTEM).
constexpr qint32 androidUser = 0;

/// One synchronous call on a client: fill parcel(), then transact() once.
class ClientCall
{
public:
    /// @p client is not owned and must not be null.
    explicit ClientCall(GBinderClient *client);

    /// The arguments.
    AlienBinderParcel &parcel() { return m_parcel; }

    /// Makes the call and blocks until it is answered. The reply belongs to this object; null
    /// when there is none.
    GBinderRemoteReply *transact(quint32 code);

    /// How the call went: 0 for success, else a negative error.
    int status() const { return m_status; }

private:
    GBinderClient *m_client;
    GBinder::RemoteReply m_reply; // released behind the request
    GBinder::LocalRequest m_request;
    AlienBinderParcel m_parcel;
    int m_status = 0;
};
