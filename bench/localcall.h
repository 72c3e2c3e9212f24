// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/fakebinder.h"

#include <gbinder.h>

#include <functional>

/// A call of the runtime, whose request lives only for the length of it: what is to be
/// measured on a request happens inside of it.
namespace LocalCall {

/// Gives the reply, which then belongs to the caller; null for none.
using Handler = std::function<GBinderLocalReply *(GBinderLocalObject *, GBinderRemoteRequest *)>;

/// Calls an object of this process with that payload; ends the process when the call does not
/// arrive.
FakeBinder::Answer run(const QByteArray &payload, Handler handler);

} // namespace LocalCall
