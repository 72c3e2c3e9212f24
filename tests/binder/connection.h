// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"

/// The two modes of a connection.
constexpr bool persistent = true;
constexpr bool onDemand = false;

/// A connection to a service, "alien" unless told otherwise.
class Connection : public AlienBinderConnection
{
    Q_OBJECT

public:
    explicit Connection(bool isPersistent, const char *name = "alien")
        : AlienBinderConnection(name, "test.IAlien", isPersistent, nullptr)
    {
    }
};
