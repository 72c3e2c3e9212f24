// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/mocksystemd.h"
#include "tests/support/privatebus.h"

#include <QObject>

#include <optional>

class ServiceController;

/// The base of the tests of ServiceController: systemd on a bus of the test's own.
class ControllerTest : public QObject
{
    Q_OBJECT

protected:
    /// The object, once the bus knows what it listens to.
    static ServiceController *listeningController();
    /// Returns when everything that the unit announced so far has been dealt with; false
    /// after ten seconds.
    bool fence();
    /// What systemd was asked for since the calls were cleared.
    QStringList requests();

    std::optional<PrivateBus> m_bus;
    std::optional<MockSystemd> m_systemd;

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
};
