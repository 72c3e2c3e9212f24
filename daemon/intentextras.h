// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QVariantMap>

/// The extras as they may be kept, without the file descriptors that came with them: an extra
/// that is a descriptor is left out, also as a variant in variants. A container keeps the whole
/// message it came in; it is replaced by an empty one of the same type, since the runtime gets
/// none of its contents.
QVariantMap withoutDescriptors(const QVariantMap &extras);
