// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/mounts.h"

#include <QFileInfo>

#include <dirent.h>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

namespace {

void require(bool ok, const QByteArray &path)
{
    if (!ok)
        qFatal("private namespace: %s: %s", path.constData(), strerror(errno));
}

std::vector<QByteArray> entriesOf(const QByteArray &folder)
{
    std::vector<QByteArray> names;
    DIR *listing = ::opendir(folder.constData());
    require(listing != nullptr, folder);
    while (const dirent *entry = ::readdir(listing)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(listing);
    return names;
}

void bindMount(const QByteArray &source, const QByteArray &target)
{
    // Recursive: in a user namespace the mounts below a folder cannot be taken off it.
    require(
        ::mount(source.constData(), target.constData(), nullptr, MS_BIND | MS_REC, nullptr) == 0,
        target);
}

void recreate(const QByteArray &source, const QByteArray &target)
{
    struct stat status = {};
    if (::lstat(source.constData(), &status) != 0)
        return; // deleted in the meantime
    if (S_ISLNK(status.st_mode)) {
        char destination[PATH_MAX + 1] = {};
        require(::readlink(source.constData(), destination, PATH_MAX) > 0
                && ::symlink(destination, target.constData()) == 0,
            target);
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        require(::mkdir(target.constData(), 0755) == 0, target);
    } else {
        const int file = ::open(target.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        require(file >= 0, target);
        ::close(file);
    }
    bindMount(source, target);
}

} // namespace

void Mounts::makeWritable(const QString &folder, const QStringList &left)
{
    const QByteArray path = QFileInfo(folder).canonicalFilePath().toLocal8Bit();
    const int original = ::open(path.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    struct stat status = {};
    require(original >= 0 && ::fstat(original, &status) == 0, folder.toLocal8Bit());
    const std::vector<QByteArray> names = entriesOf(path);
    mountEmpty(
        QString::fromLocal8Bit(path), "mode=0" + QByteArray::number(status.st_mode & 07777, 8));
    // The covered folder is still to be had through its descriptor.
    const QByteArray covered = "/proc/self/fd/" + QByteArray::number(original) + '/';
    for (const QByteArray &name : names) {
        if (!left.contains(QString::fromLocal8Bit(name)))
            recreate(covered + name, path + '/' + name);
    }
    ::close(original);
}

void Mounts::mountEmpty(const QString &path, const QByteArray &options)
{
    const QByteArray target = path.toLocal8Bit();
    require(::mount("tmpfs", target.constData(), "tmpfs", MS_NOSUID | MS_NODEV, options.constData())
            == 0,
        target);
}

void Mounts::bind(const QString &source, const QString &target)
{
    bindMount(source.toLocal8Bit(), target.toLocal8Bit());
}

void Mounts::setReadOnly(const QString &path, bool readOnly)
{
    const QByteArray target = path.toLocal8Bit();
    struct statvfs status = {};
    require(::statvfs(target.constData(), &status) == 0, target);
    // The other flags must stay as they are, or an ordinary user is refused.
    unsigned long flags = MS_REMOUNT | MS_BIND;
    if (readOnly)
        flags |= MS_RDONLY;
    const std::pair<unsigned long, unsigned long> kept[] = {{ST_NOSUID, MS_NOSUID},
        {ST_NODEV, MS_NODEV}, {ST_NOEXEC, MS_NOEXEC}, {ST_NOATIME, MS_NOATIME},
        {ST_NODIRATIME, MS_NODIRATIME}, {ST_RELATIME, MS_RELATIME}};
    for (const auto &[present, flag] : kept)
        if (status.f_flag & present)
            flags |= flag;
    if (::mount(nullptr, target.constData(), nullptr, flags, nullptr) == 0)
        return;
    require(errno == EINVAL, target); // no mount point yet
    bindMount(target, target);
    require(::mount(nullptr, target.constData(), nullptr, flags, nullptr) == 0, target);
}
