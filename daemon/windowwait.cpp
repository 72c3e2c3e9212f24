// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/windowwait.h"

#include "binder/alienbinderconnection.h"
#include "binder/alienbindertransaction.h"
#include "daemon/logging.h"

#include <QThread>

namespace {

// An extension of the runtime's SurfaceFlinger: whether a window of a package exists.
constexpr quint32 hasWindowCode = 103;
constexpr int attempts = 10;
constexpr unsigned long pauseMilliseconds = 500;

bool hasWindow(AlienBinderConnection &surfaceFlinger, const QString &package)
{
    AlienBinderTransaction *const transaction = surfaceFlinger.transaction(hasWindowCode, false);
    if (!transaction)
        return false;
    transaction->inputParcel()->writeString(package);
    if (transaction->execute() != 0)
        return false;
    if (transaction->outputParcel()->readBool())
        return true;
    qCDebug(daemonLog) << "Window for" << package << "not yet found. Sleeping 500ms";
    return false;
}

} // namespace

void waitForWindow(const QString &package)
{
    AlienBinderConnection surfaceFlinger(
        "SurfaceFlinger", "android.ui.ISurfaceComposer", false, nullptr);
    for (int attempt = 0; attempt < attempts && !hasWindow(surfaceFlinger, package); ++attempt)
        QThread::msleep(pauseMilliseconds);
}
