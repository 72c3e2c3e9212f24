// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/world.h"

namespace FakeBinder {

/// What a call on a client came to.
struct Outcome
{
    int status = -EINVAL;
    Reply reply;
    Client *client = nullptr; ///< null when there was no call
};

/// Passes a request to the Android side; its answer, with the time that it takes, is in the
/// outcome. `function` is the gbinder function, as in the ledger.
Outcome transact(GBinderClient *pointer, const char *function, guint32 code, guint32 flags,
    GBinderLocalRequest *req);

/// The handle of a reply; null for one without data.
Message *makeReply(World &world, const Outcome &outcome);

} // namespace FakeBinder
