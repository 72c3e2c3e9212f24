// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/binder/runtimeunit.h"

#include <QObject>

#include <optional>

/// The base of tests of what follows the runtime's unit. Each function must leave nothing
/// behind on the gbinder side.
class RuntimeTest : public QObject
{
    Q_OBJECT

protected:
    std::optional<RuntimeUnit> m_unit;

private Q_SLOTS:
    void initTestCase();
    void cleanup();
};
