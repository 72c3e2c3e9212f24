// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testnamespace.h"

#include "tests/support/mounts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

const char *SeatFile = "/run/systemd/seats/seat0";
const char *SessionFile = "/run/systemd/sessions/1";

void require(bool ok, const char *what)
{
    if (!ok)
        qFatal("private namespace: %s: %s", what, strerror(errno));
}

void writeMap(const char *path, const QByteArray &text)
{
    const int fd = ::open(path, O_WRONLY | O_CLOEXEC);
    require(fd >= 0 && ::write(fd, text.constData(), size_t(text.size())) == text.size(), path);
    ::close(fd);
}

void unshareMounts()
{
    const uid_t uid = ::getuid();
    const gid_t gid = ::getgid();
    if (uid == 0) {
        require(::unshare(CLONE_NEWNS) == 0, "unshare");
        return;
    }
    require(::unshare(CLONE_NEWNS | CLONE_NEWUSER) == 0, "unshare");
    writeMap("/proc/self/setgroups", "deny");
    writeMap("/proc/self/uid_map", "0 " + QByteArray::number(uid) + " 1");
    writeMap("/proc/self/gid_map", "0 " + QByteArray::number(gid) + " 1");
}

/// Keeps our mounts from the machine. In a chroot "/" is no mount point and cannot be made
/// private, so it is done from the root of the namespace, where setns leads.
void detachMounts()
{
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
        return;
    require(errno == EINVAL, "make the mounts private");
    const int root = ::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
    const int self = ::open("/proc/self/ns/mnt", O_RDONLY | O_CLOEXEC);
    require(root >= 0 && self >= 0 && ::setns(self, CLONE_NEWNS) == 0, "leave the chroot");
    require(::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0,
        "make the mounts private");
    require(::fchdir(root) == 0 && ::chroot(".") == 0, "enter the chroot again");
    ::close(root);
    ::close(self);
}

void writeFile(const QString &path, const QByteArray &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qPrintable(path));
}

void replaceFile(const QString &path, const QString &text)
{
    // By rename, as logind does: that is what libsystemd's monitor watches for.
    const QString temporary = QStringLiteral("/run/systemd/new");
    writeFile(temporary, text.toUtf8());
    require(::rename(qPrintable(temporary), qPrintable(path)) == 0, qPrintable(path));
}

} // namespace

void TestNamespace::enter()
{
    unshareMounts();
    detachMounts();
    const QString workingFolder = QDir::currentPath();
    Mounts::makeWritable(QStringLiteral("/usr/share"),
        {QStringLiteral("applications"), QStringLiteral("tovra-settings"), QStringLiteral("lumd"),
            QStringLiteral("translations")});
    Mounts::makeWritable(QStringLiteral("/var/lib"), {QStringLiteral("lumd")});
    Mounts::makeWritable(
        QStringLiteral("/etc"), {QStringLiteral("lumd"), QStringLiteral("localtime")});
    Mounts::makeWritable(QStringLiteral("/opt"), {QStringLiteral("alien")});
    Mounts::makeWritable(QStringLiteral("/home"), {QStringLiteral(".android")});
    Mounts::mountEmpty(QStringLiteral("/run"), QByteArrayLiteral("mode=0755"));
    const QDir root(QStringLiteral("/"));
    for (const char *path :
        {"usr/share/applications", "usr/share/tovra-settings/entries", "usr/share/lumd",
            "usr/share/translations", "etc/lumd", "opt/alien", "run/systemd/seats",
            "run/systemd/sessions", "run/systemd/users", "run/dbus", "run/user", "run/programs"})
        require(root.mkpath(QString::fromLatin1(path)), path);
    // The same folder again, as it is seen through the new mounts.
    QDir::setCurrent(workingFolder);
}

void TestNamespace::replaceProgram(const QString &path, const QByteArray &script)
{
    const QFileInfo program(path);
    if (!program.exists()) {
        Mounts::makeWritable(program.path(), {});
        writeFile(path, {});
    }
    // A new file each time: the old one may be running.
    const QDir replacements(QStringLiteral("/run/programs"));
    const QString replacement =
        replacements.filePath(QString::number(replacements.entryList(QDir::Files).size()));
    writeFile(replacement, script);
    require(::chmod(qPrintable(replacement), 0755) == 0, "chmod");
    Mounts::bind(replacement, path);
}

void TestNamespace::mountSmallDisk(const QString &path, int kilobytes)
{
    QDir().mkpath(path);
    Mounts::mountEmpty(path, "mode=0755,size=" + QByteArray::number(kilobytes) + "k");
}

void TestNamespace::setReadOnly(const QString &path, bool readOnly)
{
    Mounts::setReadOnly(path, readOnly);
}

void TestNamespace::setActiveSession(unsigned int uid)
{
    QDir().mkpath(QStringLiteral("/run/user/%1").arg(uid));
    replaceFile(QString::fromLatin1(SessionFile),
        QStringLiteral(
            "UID=%1\nACTIVE=1\nSTATE=active\nREMOTE=0\nTYPE=tty\nCLASS=user\nSEAT=seat0\n")
            .arg(uid));
    replaceFile(QString::fromLatin1(SeatFile),
        QStringLiteral("IS_SEAT0=1\nCAN_MULTI_SESSION=1\nCAN_TTY=1\nCAN_GRAPHICAL=0\nACTIVE=1\n"
                       "ACTIVE_UID=%1\nSESSIONS=1\nUIDS=%1\n")
            .arg(uid));
}

void TestNamespace::clearActiveSession()
{
    QFile::remove(QString::fromLatin1(SessionFile));
    replaceFile(QString::fromLatin1(SeatFile),
        QStringLiteral("IS_SEAT0=1\nCAN_MULTI_SESSION=1\nCAN_TTY=1\nCAN_GRAPHICAL=0\n"));
}
