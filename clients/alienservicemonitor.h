// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"

/// Client of the runtime's own service "alien". Its being connected is the sign that the
/// runtime is really up.
class AlienServiceMonitor : public AlienBinderConnection
{
    Q_OBJECT

public:
    /// The process-wide object, made on the first call and never deleted.
    static AlienServiceMonitor *instance();

    /// Asks the runtime to launch @p packageName. Nothing tells whether it did.
    void launchPackage(const QString &packageName);

    /// Asks the runtime to install the apk at @p path, as the runtime sees it. The result is
    /// reported to @p observer, which is not owned; null for no report. True when the runtime
    /// took the request.
    bool installPackage(const QString &path, GBinderLocalObject *observer);

private:
    AlienServiceMonitor();
};
