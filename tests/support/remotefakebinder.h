// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/fakebindertypes.h"

#include <QStringList>

#include <memory>

class AgentConnection;

/// The Android world behind the fake libgbinder inside another process, the daemon. It
/// listens on a socket, which the daemon finds by the environment variable
/// FAKE_GBINDER_SOCKET (DaemonProcess sets it from `socketPath`).
///
/// Everything may be called before the daemon is started: what is set up until then holds
/// when the daemon makes its first gbinder call. The operations mean what those of the same
/// name mean in fakebinder.h, but Notice::Synchronous is the same as Notice::Deferred. Handlers run
/// in a thread of this object, so they answer also while the test is blocked in a D-Bus call to the
/// daemon; they must not call operations of this object that wait. An operation that the daemon
/// does not answer within ten seconds ends the test process with a message.
class RemoteFakeBinder
{
public:
    /// Listens on `socketPath`, which must lie in the private namespace.
    explicit RemoteFakeBinder(const QString &socketPath = QStringLiteral("/run/fakegbinder"));
    ~RemoteFakeBinder();

    QString socketPath() const;

    void setPresent(bool present);
    void setProtocol(FakeBinder::Protocol protocol);
    void registerService(const QString &name, const FakeBinder::Handler &handler = {},
        FakeBinder::Notice notice = FakeBinder::Notice::Deferred);
    void killService(const QString &name, FakeBinder::Notice notice = FakeBinder::Notice::Deferred);
    void failClients(const QString &service, bool fail = true);

    /// Waits until the daemon offers that service; false after ten seconds.
    bool waitForPublished(const QString &name);
    /// Waits until the daemon does not offer it any more; false after ten seconds.
    bool waitForUnpublished(const QString &name);
    QVector<FakeBinder::PublishedService> published() const;
    /// Runs in the daemon's main loop and waits for the result. Needs a daemon that has made
    /// its first gbinder call, as do the five below; else they give empty results.
    FakeBinder::Answer transact(const QString &publishedName, const FakeBinder::Call &call);
    FakeBinder::Answer transactObject(quint32 objectId, const FakeBinder::Call &call);
    /// Returns when the daemon's main loop has dealt with everything that was pending.
    void settle();
    QStringList ledger();
    void clearLedger();
    QStringList leaks();
    QStringList errors();

    /// Ends the daemon's event loop with that code, so that it leaves its main function as no
    /// signal lets it: everything is destroyed, and the sanitizers look for leaks.
    void quitDaemon(int exitCode = 0);

    /// All requests of the daemon so far, in order.
    QVector<FakeBinder::Request> requests() const;
    void clearRequests();
    /// Waits until at least `count` requests to `service` with `code` were made; false after
    /// ten seconds.
    bool waitForRequest(const QString &service, quint32 code, int count = 1);

private:
    std::unique_ptr<AgentConnection> m_d;
};
