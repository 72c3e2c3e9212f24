// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/clienterror.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <vector>

#include <systemd/sd-bus.h>

/// A method of a program on the bus. The names are literals.
struct BusMethod
{
    const char *service;
    const char *path;
    const char *interface;
    const char *member;
};

/// A connection to the system bus in a Qt event loop. It is made when it is first needed, and made
/// anew when it is needed after it was lost. Nothing here blocks, whatever the bus does. On one
/// thread; every callback comes from the event loop and none after the object's end.
class BusConnection : public QObject
{
    Q_OBJECT

public:
    /// Appends the arguments; negative, an errno, when it cannot.
    using Arguments = std::function<int(sd_bus_message *)>;
    /// Gets no reply when there is an error.
    using Reply = std::function<void(sd_bus_message *reply, const ClientError &error)>;
    using Signal = std::function<void(sd_bus_message *)>;

    explicit BusConnection(QObject *parent = nullptr);
    /// Drops what waits, without a word.
    ~BusConnection() override;

    /// Connects if need be; false when there is no bus.
    bool open();
    /// Calls a method; the reply or an error comes within the time limit.
    void call(const BusMethod &method, const Arguments &arguments, std::chrono::milliseconds limit,
        const Reply &reply);
    /// Passes on the signals that fit the match rule, as long as this connection lasts; those that
    /// are sent after a call made later are not missed. Without a bus nothing happens.
    void watch(const char *rule, const Signal &handler);

Q_SIGNALS:
    /// The bus is gone; what was called has been answered with an error. Nothing is watched any
    /// more.
    void lost();

private:
    struct Closer
    {
        void operator()(sd_bus *bus) const { sd_bus_close_unref(bus); }
        void operator()(sd_bus_slot *slot) const { sd_bus_slot_unref(slot); }
    };
    using Slot = std::unique_ptr<sd_bus_slot, Closer>;

    struct PendingCall
    {
        BusConnection *connection;
        Reply reply;
        Slot slot;
        QTimer deadline;
    };
    struct Watch
    {
        Signal handler;
        Slot slot;
    };

    static int onReply(sd_bus_message *reply, void *call, sd_bus_error *error) noexcept;
    static int onSignal(sd_bus_message *signal, void *watch, sd_bus_error *error) noexcept;

    int send(const BusMethod &method, const Arguments &arguments, PendingCall &call);
    void finish(const PendingCall *call, sd_bus_message *reply, const ClientError &error);
    void onActivity();
    void prepareForActivity();
    void close();

    std::unique_ptr<sd_bus, Closer> m_bus;
    std::list<std::unique_ptr<PendingCall>> m_calls;
    std::vector<std::unique_ptr<Watch>> m_watches;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
    QTimer m_timer;
};
