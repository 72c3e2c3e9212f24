// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "session.h"

/// An operation of the client on a package that gives nothing.
using AppOperation = void (LumdClient::*)(const QString &, const Done<Nothing> &);

/// Carries it out on that app, for which the runtime has to be up, and prints what was asked for.
/// Nothing tells whether Android did it.
ExitCode requestOfApp(
    Session &session, const AndroidApp &app, AppOperation operation, const QString &text);
