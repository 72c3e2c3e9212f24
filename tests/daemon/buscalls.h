// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

struct _GDBusConnection;
struct _GDBusMessage;

/// A connection to the bus that sends what QtDBus has no words for. Every failure of the
/// connection itself ends the test process with a message.
class BusCalls
{
public:
    explicit BusCalls(const QString &address);
    ~BusCalls();
    Q_DISABLE_COPY(BusCalls)

    /// Takes the message over; does not wait.
    void send(_GDBusMessage *message);
    /// Waits, while the event loop turns, until the daemon has dealt with what was sent; false
    /// when it does not within the deadline (milliseconds).
    bool settle(int deadline = 30000);

private:
    _GDBusConnection *m_connection;
};
