// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienpackagemanager.h"

#include "binder/logging.h"
#include "clients/alienservicemonitor.h"
#include "clients/androiduser.h"
#include "clients/clientcall.h"
#include "clients/installresult.h"
#include "clients/transactioncodes.h"
#include "config/apkconfig.h"

#include <cstring>

namespace {

constexpr char installObserverInterface[] = "android.content.pm.IPackageInstallObserver2";
constexpr char deleteObserverInterface[] = "android.content.pm.IPackageDeleteObserver";

// android.content.pm.IPackageManager. Later releases have no installPackage with an observer:
// there the runtime's own service does it.
constexpr quint32 installPackageSdk27 = 60;
constexpr TransactionCodes deletePackageCodes{64, 63, 66};
constexpr TransactionCodes deleteApplicationCacheFilesCodes{100, 100, 103};
constexpr TransactionCodes clearApplicationUserDataCodes{101, 101, 104};
constexpr quint32 getPackageUidCode = 5;

// android.content.pm.IPackageInstallObserver2
constexpr quint32 onUserActionRequiredCode = 1;
constexpr quint32 onPackageInstalledCode = 2;
// android.content.pm.IPackageDeleteObserver
constexpr quint32 packageDeletedCode = 1;
constexpr qint32 succeeded = 1; // PackageManager.INSTALL_SUCCEEDED, DELETE_SUCCEEDED

constexpr int handledStatus = 0;
constexpr int unknownCallStatus = 1;

constexpr qint32 anyVersion = -1; // PackageManager.VERSION_CODE_HIGHEST
constexpr qint32 installFlags = 66; // INSTALL_REPLACE_EXISTING, INSTALL_ALL_USERS
constexpr qint32 deleteFlags = 2; // DELETE_ALL_USERS

int unknownCall(quint32 code)
{
    qCWarning(binderLog) << "Unknown binder call (" << code << ")";
    return unknownCallStatus;
}

} // namespace

AlienPackageManager::AlienPackageManager(QObject *parent)
    : AlienBinderConnection("package", "android.content.pm.IPackageManager", true, parent)
{
    connect(this, &AlienBinderConnection::connectionChanged, this,
        &AlienPackageManager::updateObservers);
}

AlienPackageManager::~AlienPackageManager()
{
    // The base reports a last disconnect when this class has gone already.
    disconnect(this, &AlienBinderConnection::connectionChanged, this, nullptr);
}

void AlienPackageManager::installPackage(const QString &path, bool silent)
{
    GBinderClient *const link = client();
    if (!link)
        return;
    GBinderLocalObject *const observer = silent ? nullptr : m_installObserver.get();
    if (ApkConfig::sdkVersion() != 27) {
        AlienServiceMonitor::instance()->installPackage(path, observer);
        return;
    }
    ClientCall call(link);
    call.parcel().writeString(path);
    call.parcel().writeLocalObject(observer);
    call.parcel().writeInt32(installFlags);
    const QString noInstaller;
    call.parcel().writeString(noInstaller);
    call.parcel().writeInt32(androidUser);
    call.transact(installPackageSdk27);
}

bool AlienPackageManager::deletePackage(const QString &packageName, bool silent)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    call.parcel().writeInt32(anyVersion);
    call.parcel().writeLocalObject(silent ? nullptr : m_deleteObserver.get());
    call.parcel().writeInt32(androidUser);
    call.parcel().writeInt32(deleteFlags);
    GBinderRemoteReply *const reply = call.transact(deletePackageCodes);
    qint32 exception = 0;
    if (reply)
        gbinder_remote_reply_read_int32(reply, &exception);
    return reply && call.status() == 0 && exception == 0;
}

void AlienPackageManager::deleteApplicationCacheFiles(const QString &packageName)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    call.parcel().writeInt32(androidUser);
    call.parcel().writeLocalObject(nullptr);
    call.transact(deleteApplicationCacheFilesCodes);
}

void AlienPackageManager::clearApplicationUserData(const QString &packageName)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    call.parcel().writeLocalObject(nullptr);
    call.parcel().writeInt32(androidUser);
    call.transact(clearApplicationUserDataCodes);
}

qint32 AlienPackageManager::packageUid(const QString &packageName, qint32 flags)
{
    ClientCall call(client());
    call.parcel().writeString(packageName);
    call.parcel().writeInt32(flags);
    call.parcel().writeInt32(androidUser);
    AlienBinderParcel reply(call.transact(getPackageUidCode));
    const qint32 exception = reply.readInt32();
    return exception == 0 ? reply.readInt32() : -1;
}

void AlienPackageManager::updateObservers(bool connected)
{
    if (!connected) {
        m_installObserver.reset();
        m_deleteObserver.reset();
        m_replacedObservers.clear();
        return;
    }
    replaceObserver(m_installObserver, installObserverInterface);
    replaceObserver(m_deleteObserver, deleteObserverInterface);
}

void AlienPackageManager::replaceObserver(GBinder::LocalObject &observer, const char *interface)
{
    if (observer)
        m_replacedObservers.push_back(std::move(observer));
    observer.reset(gbinder_servicemanager_new_local_object(
        serviceManager(), interface, &AlienPackageManager::onObserverRequest, this));
}

GBinderLocalReply *AlienPackageManager::onObserverRequest(GBinderLocalObject *observer,
    GBinderRemoteRequest *request, guint code, guint flags, int *status, void *manager)
{
    Q_UNUSED(observer)
    Q_UNUSED(flags)
    auto *const self = static_cast<AlienPackageManager *>(manager);
    const char *const interface = gbinder_remote_request_interface(request);
    if (!interface)
        qCDebug(binderLog) << "lumd - installation event - no interface?";
    else if (std::strcmp(interface, installObserverInterface) == 0)
        *status = self->onInstallObserverRequest(request, code);
    else if (std::strcmp(interface, deleteObserverInterface) == 0)
        *status = self->onDeleteObserverRequest(request, code);
    return nullptr;
}

int AlienPackageManager::onInstallObserverRequest(GBinderRemoteRequest *request, quint32 code)
{
    if (code == onUserActionRequiredCode) {
        Q_EMIT installationResultReceived(
            false, QString(), QStringLiteral("Package installation failed"));
        return handledStatus;
    }
    if (code != onPackageInstalledCode)
        return unknownCall(code);

    AlienBinderParcel parcel(request);
    const QString packageName = parcel.readString();
    const qint32 returnCode = parcel.readInt32();
    QString message = parcel.readString();
    qCDebug(binderLog) << "Package install result" << returnCode << "for" << packageName << "("
                       << message << ")";
    // The extras hold nothing that the daemon uses; reading them logs them.
    if (parcel.readInt32() != 0)
        parcel.readBundle();
    if (returnCode != succeeded && message.isEmpty())
        message = installFailureText(returnCode);
    Q_EMIT installationResultReceived(returnCode == succeeded, packageName, message);
    return handledStatus;
}

int AlienPackageManager::onDeleteObserverRequest(GBinderRemoteRequest *request, quint32 code)
{
    if (code != packageDeletedCode)
        return unknownCall(code);
    AlienBinderParcel parcel(request);
    const QString packageName = parcel.readString();
    const qint32 returnCode = parcel.readInt32();
    Q_EMIT uninstallationResultReceived(returnCode == succeeded, packageName);
    return handledStatus;
}
