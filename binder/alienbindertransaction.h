// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderparcel.h"
#include "binder/gbinderhandles.h"

#include <QObject>

/// One request and its reply on a binder client. The order of use: fill inputParcel(),
/// execute() once, read outputParcel(), delete. A transaction outlives the link it was made
/// on; it then answers with empty parcels and a failed status.
class AlienBinderTransaction : public QObject
{
    Q_OBJECT

public:
    /// @p client is not owned and must live until onConnectionChanged(false). @p code is the
    /// Android transaction code. A @p oneway transaction has no reply.
    AlienBinderTransaction(GBinderClient *client, quint32 code, bool oneway, QObject *parent);
    ~AlienBinderTransaction() override;

    /// The arguments of the call: the same parcel each time. An empty parcel, with a warning,
    /// once the link is down. Both parcels belong to the transaction.
    AlienBinderParcel *inputParcel();

    /// Makes the call and blocks until it is answered. 0 for success, else a negative error;
    /// -1 without a call when the link is down or a reply is already there.
    qint32 execute();

    /// The reply: the same parcel each time, so that reads go on where they stopped. An empty
    /// parcel, with a warning, when there is no reply or the link went down before the first
    /// use.
    AlienBinderParcel *outputParcel();

public Q_SLOTS:
    /// Forgets the client when the link has gone.
    void onConnectionChanged(bool connected);

private:
    GBinderClient *m_client;
    const quint32 m_code;
    const bool m_oneway;
    std::unique_ptr<AlienBinderParcel> m_input;
    std::unique_ptr<AlienBinderParcel> m_output;
    GBinder::LocalRequest m_request;
    GBinder::RemoteReply m_reply;
    AlienBinderParcel m_empty;
};
