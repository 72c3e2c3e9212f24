// SPDX-License-Identifier: BSD-3-Clause
#include "services/surfaceflingerservice.h"

#include "windowlist.h"

SurfaceFlingerService::SurfaceFlingerService(int sdk, EventLog *log, WindowList *windows)
    : AndroidService(QStringLiteral("SurfaceFlinger"),
          QStringLiteral("android.ui.ISurfaceComposer"), sdk, log),
      m_windows(windows)
{
    add("hasWindow", {103, 103, 103},
        [this](AndroidParcel &request) { return hasWindow(request); });
}

AndroidService::Call SurfaceFlingerService::hasWindow(AndroidParcel &request)
{
    const QString package = request.readString16();
    return {{{QStringLiteral("package"), describe(package)}}, [this, package](AndroidReply &reply) {
                // a native service: there is no exception's word in front
                reply.writeInt32(m_windows->poll(package) ? 1 : 0);
            }};
}
