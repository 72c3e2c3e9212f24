// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/world.h"

namespace FakeBinder {

/// What the fake keeps in the storage of a GBinderReader.
struct ReaderState
{
    Message *message; ///< null in a reader that was initialised with nothing
    const char *start;
    gsize size;
    gsize position;
};

static_assert(sizeof(ReaderState) <= sizeof(GBinderReader), "the storage is the caller's");

/// Begins to read a message behind its header; null gives a reader at its end.
void initReader(GBinderReader *reader, Message *message);

} // namespace FakeBinder
