// SPDX-License-Identifier: BSD-3-Clause
// Apps in: install requests, from the caller's file to the runtime's staging folder.
#include "daemon/lumdaemon.h"

#include "config/apkconfig.h"
#include "config/launchernames.h"
#include "config/paths.h"
#include "daemon/caller.h"
#include "daemon/logging.h"
#include "daemon/staging.h"
#include "runtime/runtimeoffer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// What lies in the way is removed unseen; a removal that fails shows in the copy or rename.
void clearWay(const QString &path, const char *warning)
{
    if (QFile::exists(path)) {
        qCWarning(daemonLog) << warning << path;
        QFile::remove(path);
    }
}

bool copyFile(
    const QString &source, const std::optional<FileRights> &rights, const QString &temporary)
{
    if (copyForStaging(source, rights, temporary))
        return true;
    QFile::remove(temporary);
    qCCritical(daemonLog) << "Could not copy incoming file:" << source << "->" << temporary;
    return false;
}

// A failed rename leaves the temporary file to the next install of that name.
bool renameFile(const QString &temporary, const QString &target)
{
    if (QFile::rename(temporary, target))
        return true;
    QFile::remove(target);
    qCCritical(daemonLog) << "Could not rename file:" << temporary << "->" << target;
    return false;
}

bool openToRuntime(const QString &target)
{
    const QByteArray path = target.toLocal8Bit();
    constexpr mode_t mode = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
    if (chmod(path.constData(), mode) != 0) {
        qCCritical(daemonLog) << "Cannot change permissions:" << target << "("
                              << std::strerror(errno) << ")";
        return false;
    }
    if (chown(path.constData(), 0, 0) != 0) {
        qCCritical(daemonLog) << "Cannot change ownership:" << target << "(" << std::strerror(errno)
                              << ")";
        return false;
    }
    return true;
}

// Under the file's own name, with the number that it may have; announcements look without one.
void markAsPartnerSpace(const QString &apkName)
{
    QFile marker(QLatin1String(Paths::partnerSpace) + apkName);
    marker.open(QIODevice::WriteOnly);
}

} // namespace

bool LumDaemon::installFile(const QString &filename, PackageSource source)
{
    qCDebug(daemonLog) << "installFile:" << filename;
    // Asked once: a second answer could be another one.
    const std::optional<Caller> requester = caller();
    if (!isPackageChangeAllowed(requester)) {
        qCCritical(daemonLog) << "APK installation prohibited";
        publishNotification(qtTrId("lumd-app_installation_disallowed"), true);
        return false;
    }
    if (!runtimeImageExists()) {
        offerRuntime();
        return false;
    }
    if (!filename.startsWith(QLatin1Char('/'))) {
        qCCritical(daemonLog) << "Absolute path required:" << filename;
        return false;
    }
    if (!QFile::exists(filename)) {
        qCCritical(daemonLog) << "File does not exist:" << filename;
        return false;
    }

    const QString name = QFileInfo(filename).fileName();
    startServiceIfNeeded();
    const QString target = pathInFolder(incomingDir(), name);
    if (!stageFile(filename, requester ? requester->fileRights() : std::nullopt, target))
        return false;
    if (source == SourcePartnerSpace)
        markAsPartnerSpace(name);

    const QString packaged = pathInFolder(QDir(m_config->path(PackagedDir)), name);
    qCDebug(daemonLog) << "Asking ACL to install:" << filename << packaged;
    PackageMod mod;
    mod.filename = stripDataRoot(target);
    mod.install = true;
    // An apk that a package delivers is told from one that the user picked by its path.
    mod.silent = source != SourceDefault || filename == packaged;
    if (isReadyForPackageMods()) {
        triggerPackageMod(mod);
    } else {
        qCDebug(daemonLog) << "Aliendalvik not running. Saving " << mod.filename << " for later";
        m_deferredMods.append(mod);
        tellQueued("install", filename);
    }
    return true;
}

bool LumDaemon::installPreloadFile(const QString &filename)
{
    return installFile(filename, SourcePreload);
}

bool LumDaemon::installPartnerSpaceFile(const QString &filename)
{
    return installFile(filename, SourcePartnerSpace);
}

void LumDaemon::offerRuntime()
{
    if (runtimeInRepos()) {
        qCWarning(daemonLog) << "ACL is not installed, offering installation";
        offerRuntimePackage();
    } else {
        qCCritical(daemonLog) << "This device does not come with Android(tm) App Support";
    }
}

bool LumDaemon::stageFile(
    const QString &filename, const std::optional<FileRights> &rights, const QString &target)
{
    const QString temporary = target + QLatin1String(".tmp");
    clearWay(target, "File already exists in incoming folder:");
    clearWay(temporary, "Tmp file already exists in incoming folder:");
    return copyFile(filename, rights, temporary) && renameFile(temporary, target)
        && openToRuntime(target);
}

QString LumDaemon::stripDataRoot(const QString &path) const
{
    const QString dataRoot = m_config->path(DataRoot);
    return path.startsWith(dataRoot) ? path.mid(dataRoot.size()) : path;
}
