// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/apkmanager.h"

#include "binder/alienbinderparcel.h"
#include "binder/device.h"
#include "launcher/logging.h"

#include <cstring>

namespace {

constexpr char launcherInterface[] = "alien.applications.IAlienNativeLauncherService";

// The transactions of that interface.
enum LauncherTransaction : quint32 {
    LauncherAdded = 1,
    LaunchersComplete = 2,
    PackageRemoved = 3,
};

} // namespace

ApkManager::ApkManager()
    : AlienBinderService("alien.launcher", launcherInterface, runtimeBinderDevice, nullptr)
{
}

GBinderLocalReply *ApkManager::onTransact(
    GBinderRemoteRequest *request, quint32 code, quint32 flags, int *status)
{
    Q_UNUSED(flags)
    const char *const interface = gbinder_remote_request_interface(request);
    if (!interface || std::strcmp(interface, launcherInterface) != 0)
        return nullptr;

    *status = 0;
    switch (code) {
    case LaunchersComplete:
        Q_EMIT launchersComplete();
        break;
    case PackageRemoved:
        readRemovedPackage(request);
        break;
    case LauncherAdded:
        readLauncher(request);
        break;
    default:
        qCDebug(launcherLog) << "Unknown binder call (" << code << ")";
        *status = 1;
    }
    return nullptr;
}

void ApkManager::readLauncher(GBinderRemoteRequest *request)
{
    AlienBinderParcel parcel(request);
    ApkLauncher launcher;
    launcher.packageName = parcel.readString();
    launcher.className = parcel.readString();
    launcher.caption = parcel.readString();
    launcher.packageVersion = parcel.readString();
    launcher.icon = parcel.readByteArray();
    qCDebug(launcherLog) << "Read" << launcher.icon.size() << "bytes for" << launcher.packageName
                         << "icon";
    qCDebug(launcherLog) << "Launcher added from alien:" << launcher.caption << "("
                         << launcher.packageName << ")";
    Q_EMIT addLauncher(launcher);
}

void ApkManager::readRemovedPackage(GBinderRemoteRequest *request)
{
    const std::unique_ptr<char, decltype(&g_free)> name(
        gbinder_remote_request_read_string16(request), &g_free);
    const QString package = QString::fromLatin1(name.get());
    qCDebug(launcherLog) << "Package removed from alien:" << package;
    Q_EMIT packageRemoved(package);
}
