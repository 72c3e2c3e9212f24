// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "gbinderhandles.h"

#include <QJsonObject>
#include <QObject>
#include <QQueue>

#include <functional>

class EventLog;

/// One call to "alien.launcher".
struct LauncherCall
{
    quint32 code = 0;
    QString interface; ///< empty sends no header at all
    QByteArray arguments;
    bool oneway = false;
    bool mustSucceed = true; ///< a status that is not 0 is an error
    QJsonObject record; ///< what the event log says of it
};

/// The way from the runtime to "alien.launcher": calls go out one after the other, each
/// when the one before has been answered. Nothing here blocks, for the process called may
/// be calling the runtime at the same time.
class LauncherChannel : public QObject
{
    Q_OBJECT

public:
    /// Gets the record of the call with its "status", and "error" where it failed.
    using Done = std::function<void(const QJsonObject &)>;

    /// @param sdk 27 to 29; the layout of the requests.
    LauncherChannel(EventLog *log, int sdk);
    ~LauncherChannel() override;

    /// Looks the service up. @return whether it is there.
    bool open(GBinderServiceManager *manager);
    void close();
    bool isOpen() const { return m_remote != nullptr; }
    /// Calls that are not answered yet.
    int pending() const { return m_queue.size() + (m_current.active ? 1 : 0); }

    void send(const LauncherCall &call, const Done &done = {});

private:
    struct Entry
    {
        LauncherCall call;
        Done done;
        bool active = false;
    };

    static void onReply(
        GBinderClient *client, GBinderRemoteReply *reply, int status, void *channel);
    void next();
    bool start();
    void finish(int status, const QString &error, const QByteArray &result);

    EventLog *const m_log;
    const int m_sdk;
    RemoteObjectPointer m_remote;
    ClientPointer m_client;
    QQueue<Entry> m_queue;
    Entry m_current;
    gulong m_transaction = 0;
};
