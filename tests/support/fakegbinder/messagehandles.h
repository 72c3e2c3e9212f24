// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/world.h"

namespace FakeBinder {

/// What the functions of all four kinds of message begin with.
inline Message *findMessage(const void *pointer, Handle::Kind kind, const char *function)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    return lookUp<Message>(world, pointer, kind, function);
}

template <typename Pointer> Pointer *addReference(Pointer *pointer, Handle::Kind kind)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.ref(pointer, kind);
    return pointer;
}

inline void release(const void *pointer, Handle::Kind kind)
{
    World &world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    world.unref(pointer, kind);
}

} // namespace FakeBinder
