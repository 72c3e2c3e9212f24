// SPDX-License-Identifier: BSD-3-Clause
// Apps out: remove requests, and the removal of the RPM package that delivered an apk.
#include "daemon/lumdaemon.h"

#include "config/apkconfig.h"
#include "config/launchernames.h"
#include "config/paths.h"
#include "daemon/caller.h"
#include "daemon/logging.h"
#include "daemon/packagenames.h"

#include <PackageKit/Daemon>
#include <PackageKit/Transaction>

#include <QDir>
#include <QFile>
#include <QMetaEnum>

using PackageKit::Transaction;

namespace {

void logErrors(Transaction *transaction, const char *words)
{
    QObject::connect(
        transaction, &Transaction::errorCode, transaction,
        [words](Transaction::Error error, const QString &details) {
            qCDebug(daemonLog) << words
                               << QMetaEnum::fromType<Transaction::Error>().valueToKey(error)
                               << details;
        },
        Qt::DirectConnection);
}

void removeRpmPackage(const QString &packageId)
{
    constexpr bool allowDeps = false;
    constexpr bool autoRemove = false;
    logErrors(PackageKit::Daemon::removePackage(
                  packageId, allowDeps, autoRemove, Transaction::TransactionFlagOnlyTrusted),
        "Error uninstalling package: ");
}

} // namespace

bool LumDaemon::removeFile(const QString &filename)
{
    qCDebug(daemonLog) << "removeFile:" << filename;
    if (!isPackageChangeAllowed(caller())) {
        qCCritical(daemonLog) << "APK uninstallation prohibited";
        publishNotification(qtTrId("lumd-app_uninstallation_disallowed"), true);
        return false;
    }
    startServiceIfNeeded();

    const QString resolved = m_desktopManager.packageForDesktopFile(filename);
    PackageMod mod;
    mod.filename = packageNameFromFile(resolved);
    mod.silent = true;
    if (isReadyForPackageMods()) {
        triggerPackageMod(mod);
    } else {
        qCDebug(daemonLog) << "Aliendalvik not running. Will remove " << mod.filename << " later";
        m_deferredMods.append(mod);
        tellQueued("remove", mod.filename);
    }

    QFile::remove(unversionedApkPath(QDir(QLatin1String(Paths::partnerSpace)), resolved));
    uninstallRpmPackage(resolved);
    return true;
}

void LumDaemon::uninstallRpmPackage(const QString &filename) const
{
    const QString package = packageNameFromFile(filename);
    const QDir packagedDir(m_config->path(PackagedDir));
    if (!QFile::exists(pathInFolder(packagedDir, package) + QLatin1String(".apk")))
        return;

    const QString rpm = QStringLiteral("mirlane-apk-%1").arg(package);
    qCDebug(daemonLog) << "Requesting uninstall of RPM '" << rpm << "' from PackageKit";
    Transaction *const resolve = PackageKit::Daemon::resolve(rpm, Transaction::FilterInstalled);
    logErrors(resolve, "Error resolving package: ");
    QObject::connect(
        resolve, &Transaction::errorCode, resolve,
        [rpm] {
            // A fault of the device, of which whoever runs it is to hear.
            if (!PackageKit::Daemon::isRunning())
                qCWarning(daemonLog) << "There is no PackageKit that could remove" << rpm;
        },
        Qt::DirectConnection);
    QObject::connect(
        resolve, &Transaction::package, resolve,
        [](Transaction::Info, const QString &packageId) { removeRpmPackage(packageId); },
        Qt::DirectConnection);
}
