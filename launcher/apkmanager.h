// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderservice.h"
#include "launcher/apklauncher.h"

/// The service "alien.launcher", by which the Android runtime tells which apps can be
/// launched. It only decodes; nothing in a call is validated.
class ApkManager : public AlienBinderService
{
    Q_OBJECT

public:
    ApkManager();

Q_SIGNALS:
    void addLauncher(const ApkLauncher &launcher);
    void packageRemoved(const QString &package);
    /// The runtime has told all launchers that it knows.
    void launchersComplete();

protected:
    GBinderLocalReply *onTransact(
        GBinderRemoteRequest *request, quint32 code, quint32 flags, int *status) override;

private:
    void readLauncher(GBinderRemoteRequest *request);
    void readRemovedPackage(GBinderRemoteRequest *request);
};
