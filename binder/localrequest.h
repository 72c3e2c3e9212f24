// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gbinder.h>

#include <QtGlobal>

#include <functional>

class AlienBinderParcel;

/// Reads the arguments from the first parcel and writes the results to the second; false for
/// a call that is not known.
using LocalRequestProcessor = std::function<bool(AlienBinderParcel *in, AlienBinderParcel *out)>;

/// Answers one call of the runtime on @p object through @p process. @p status becomes 0, or 1
/// for a call that is not known. Gives the reply, which belongs to the caller, in either
/// case; null for a oneway call.
GBinderLocalReply *handleLocalRequest(GBinderLocalObject *object, GBinderRemoteRequest *request,
    quint32 flags, int *status, const LocalRequestProcessor &process);
