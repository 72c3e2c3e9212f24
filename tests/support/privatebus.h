// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/childprocess.h"

#include <QString>

/// A dbus-daemon of the test's own on a socket in the private namespace. Everybody may own
/// and send everything, unless a file of the socket's name and ".policy", read as the last part of
/// its configuration, says otherwise. It is ready when the constructor returns and stops with the
/// object; a failure to start ends the process with a message.
class PrivateBus
{
public:
    enum class Kind {
        System, ///< at /run/dbus/system_bus_socket, where QDBusConnection::systemBus() looks
        User, ///< at /run/user/UID/dbus/user_bus_socket
    };

    /// `uid` is the user of a user bus, and means nothing for the system bus.
    explicit PrivateBus(Kind kind, unsigned int uid = 0);
    ~PrivateBus();
    Q_DISABLE_COPY(PrivateBus)

    /// "unix:path=..."
    QString address() const { return m_address; }
    /// Stops it before the object's end, as a bus that breaks down.
    void stop();
    /// Sends a signal to it, such as SIGSTOP.
    void signal(int number) { m_daemon.signal(number); }

private:
    QString m_address;
    ChildProcess m_daemon;
};
