// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderparcel.h"
#include "binder/gbinderhandles.h"

#include <QObject>

#include <memory>

/// One request and its reply on a binder client, as an object that outlives the function which
/// makes it: for a call that must not block the main thread (start()), and on an object that the
/// runtime handed out (AlienBinderCallbackClient). A call that may block is a ClientCall. The order
/// of use: fill inputParcel(), execute() once, or start() and wait for finished(), read
/// outputParcel(), delete. A transaction outlives the link it was made on; it then answers with
/// empty parcels and a failed status. Deleted before finished(), it gives the call up.
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

    /// Makes the call and returns; finished() follows from the event loop. False, without a
    /// call and without the signal, when the link is down, a reply is already there or a call
    /// is under way. The runtime can leave a call that was given up unanswered for ever:
    /// @p heldUntilAnswered is released when libgbinder is done with it.
    bool start(const std::shared_ptr<void> &heldUntilAnswered = {});

    /// The reply: the same parcel each time, so that reads go on where they stopped. An empty
    /// parcel, with a warning, when there is no reply or the link went down before the first
    /// use.
    AlienBinderParcel *outputParcel();

Q_SIGNALS:
    /// The call of start() has come to its end: @p status as execute() gives it, -1 when the
    /// link went down first. Whoever hears it may delete the transaction.
    void finished(qint32 status);

public Q_SLOTS:
    /// Forgets the client when the link has gone, and gives up a call that is under way.
    void onConnectionChanged(bool connected);

private:
    struct Call;

    static void onReply(GBinderClient *client, GBinderRemoteReply *reply, int status, void *call);
    void keepReply(GBinderRemoteReply *reply);
    void cancel();

    GBinderClient *m_client;
    const quint32 m_code;
    const bool m_oneway;
    std::unique_ptr<AlienBinderParcel> m_input;
    std::unique_ptr<AlienBinderParcel> m_output;
    GBinder::LocalRequest m_request;
    GBinder::RemoteReply m_reply;
    GBinder::Client m_calledClient; // a call can only be given up on the client that makes it
    Call *m_call = nullptr; // owned by libgbinder, which may hold it for longer than this lives
    AlienBinderParcel m_empty;
};
