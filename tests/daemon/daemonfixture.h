// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/daemonprocess.h"
#include "tests/support/mocksystemd.h"
#include "tests/support/privatebus.h"
#include "tests/support/remotefakebinder.h"

#include <QDBusMessage>
#include <QVariantList>

#include <optional>

/// The daemon between its neighbours: a system bus with a systemd, the Android side of the
/// binder device, and an active session of user 1000 on the seat. Only in the private
/// namespace, so not in a test class's constructor, and only one in the life of a process,
/// since QDBusConnection::systemBus() is not made anew.
struct DaemonFixture
{
    DaemonFixture();

    /// Starts the daemon and waits until it owns its name and its event loop turns; false
    /// when it does not get there.
    bool start();
    /// Kills the daemon and puts a new one in its place, not started yet, with an Android
    /// side of its own. The bus, systemd and all files stay.
    void renew();

    /// Waits until the daemon has dealt with what was in its queues; false when it is gone.
    static bool settle();
    /// Calls a method of the daemon and waits for the reply or the error.
    static QDBusMessage call(const QString &method, const QVariantList &arguments = {});

    PrivateBus systemBus{PrivateBus::Kind::System};
    MockSystemd systemd;
    std::optional<RemoteFakeBinder> android;
    std::optional<DaemonProcess> daemon;
};

/// The error's name and text, or an empty string for a reply.
QString errorOf(const QDBusMessage &reply);

/// Whether the system bus has an owner of that name.
bool isOnBus(const QString &name);

/// The bytes of a file; a null array when it cannot be read.
QByteArray fileContents(const QString &path);
/// Makes a file with that contents, and its folder; ends the test process on failure.
void makeFile(const QString &path, const QByteArray &contents = QByteArrayLiteral("old"));
