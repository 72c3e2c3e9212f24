// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"

struct AlienIntent;

/// Client of Android's activity manager. Without a link an operation does nothing, and
/// nothing tells whether Android did what was asked.
class AlienActivityManager : public AlienBinderConnection
{
    Q_OBJECT

public:
    AlienActivityManager();

    void startActivity(const AlienIntent &intent);
    void forceStopPackage(const QString &packageName);
};
