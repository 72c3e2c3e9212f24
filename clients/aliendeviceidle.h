// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"

/// Client of Android's power-save whitelist: the packages that may run, and so may start when
/// the device boots, while it idles. The link is opened for a call and dropped soon after.
class AlienDeviceIdle : public AlienBinderConnection
{
    Q_OBJECT

public:
    AlienDeviceIdle();

    /// Lost without a link; logged as critical when the call fails.
    void setWhitelisted(const QString &packageName, bool allowed);
    /// False without a link and, with a critical message, when the call fails. An exception
    /// counts as a failure, but what follows it is still read as the answer.
    bool isWhitelisted(const QString &packageName);
};
