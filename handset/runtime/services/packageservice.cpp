// SPDX-License-Identifier: BSD-3-Clause
#include "services/packageservice.h"

#include "appcatalogue.h"
#include "packageinstaller.h"

PackageService::PackageService(
    int sdk, EventLog *log, AppCatalogue *apps, PackageInstaller *installer)
    : AndroidService(QStringLiteral("package"),
          QStringLiteral("android.content.pm.IPackageManager"), sdk, log),
      m_apps(apps),
      m_installer(installer)
{
    using Member = Call (PackageService::*)(AndroidParcel &);
    const auto method = [this](const char *name, const Codes &codes, Member member) {
        add(name, codes,
            [this, member](AndroidParcel &request) { return (this->*member)(request); });
    };
    // Android 9 took the method that installs a file away
    method("installPackageAsUser", {60, NotThere, NotThere}, &PackageService::installPackage);
    method("deletePackageAsUser", {64, 63, 66}, &PackageService::deletePackage);
    method("deleteApplicationCacheFilesAsUser", {100, 100, 103},
        &PackageService::deleteApplicationCacheFiles);
    method("clearApplicationUserData", {101, 101, 104}, &PackageService::clearApplicationUserData);
    method("getPackageUid", {5, 5, 5}, &PackageService::getPackageUid);
}

AndroidService::Call PackageService::installPackage(AndroidParcel &request)
{
    const QString path = request.readString16();
    const AndroidParcel::Binder binder = request.readBinder();
    const std::shared_ptr<GBinderRemoteObject> observer = object(binder);
    const qint32 flags = request.readInt32();
    const QString installer = request.readString16();
    readUser(request);
    return {
        {{QStringLiteral("path"), describe(path)}, {QStringLiteral("observer"), describe(binder)},
            {QStringLiteral("flags"), flags}, {QStringLiteral("installer"), describe(installer)}},
        [this, path, observer](AndroidReply &reply) {
            reply.writeNoException();
            m_installer->install(path, observer);
        }};
}

AndroidService::Call PackageService::deletePackage(AndroidParcel &request)
{
    const QString package = request.readString16();
    const qint32 version = request.readInt32();
    const AndroidParcel::Binder binder = request.readBinder();
    const std::shared_ptr<GBinderRemoteObject> observer = object(binder);
    readUser(request);
    const qint32 flags = request.readInt32();
    return {{{QStringLiteral("package"), describe(package)}, {QStringLiteral("version"), version},
                {QStringLiteral("observer"), describe(binder)}, {QStringLiteral("flags"), flags}},
        [this, package, observer](AndroidReply &reply) {
            reply.writeNoException();
            m_installer->remove(package, observer);
        }};
}

AndroidService::Call PackageService::deleteApplicationCacheFiles(AndroidParcel &request)
{
    const QString package = request.readString16();
    readUser(request);
    const AndroidParcel::Binder binder = request.readBinder();
    const std::shared_ptr<GBinderRemoteObject> observer = object(binder);
    return {{{QStringLiteral("package"), describe(package)},
                {QStringLiteral("observer"), describe(binder)}},
        [this, package, observer](AndroidReply &reply) {
            reply.writeNoException();
            m_installer->clearCache(package, observer);
        }};
}

AndroidService::Call PackageService::clearApplicationUserData(AndroidParcel &request)
{
    const QString package = request.readString16();
    const AndroidParcel::Binder binder = request.readBinder();
    const std::shared_ptr<GBinderRemoteObject> observer = object(binder);
    readUser(request);
    return {{{QStringLiteral("package"), describe(package)},
                {QStringLiteral("observer"), describe(binder)}},
        [this, package, observer](AndroidReply &reply) {
            reply.writeNoException();
            m_installer->clearData(package, observer);
        }};
}

AndroidService::Call PackageService::getPackageUid(AndroidParcel &request)
{
    const QString package = request.readString16();
    const qint32 flags = request.readInt32();
    readUser(request);
    return {{{QStringLiteral("package"), describe(package)}, {QStringLiteral("flags"), flags}},
        [this, package](AndroidReply &reply) {
            reply.writeNoException();
            reply.writeInt32(m_apps->uid(package));
        }};
}
