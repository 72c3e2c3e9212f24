// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/logcapture.h"
#include "tests/support/privatebus.h"
#include "tests/userbus/rawpeer.h"
#include "tests/userbus/recorder.h"
#include "userbus/userbus.h"

#include <QtTest>

#include <optional>

/// A UserBus, and what is put in the place of the bus that it looks for.
struct UserBusWorld
{
    UserBusWorld()
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", RawPeer::address());
        bus.emplace();
    }

    /// What is said of a message that waited for too long.
    static QString dropped()
    {
        return QStringLiteral("warning com.tovra.lumd.daemon User's bus not reached in "
                              "10 s, dropping message: test.Recorder.Note");
    }

    LogCapture log;
    std::optional<RawPeer> peer;
    std::optional<PrivateBus> daemon;
    std::optional<Recorder> recorder;
    std::optional<UserBus> bus; // goes first
};

/// Has the event loop turn until nothing is left to do at once.
inline void settle()
{
    bool isDone = false;
    QTimer::singleShot(50, [&isDone] { isDone = true; });
    QTRY_VERIFY(isDone);
}
