// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

namespace FakeBinder {

/// The size in bytes of a 64-bit kernel's struct flat_binder_object (linux/android/binder.h).
constexpr int ObjectSize = 24;

/// BINDER_TYPE_BINDER, an object of the sender, and BINDER_TYPE_HANDLE, of another process.
constexpr quint32 TypeBinder = 0x73622a85;
constexpr quint32 TypeHandle = 0x73682a85;

} // namespace FakeBinder
