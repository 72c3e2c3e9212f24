// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/staging.h"

#include <QByteArray>
#include <QFile>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) { }
    ~Descriptor()
    {
        if (isOpen())
            close(m_number);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }

private:
    const int m_number;
};

bool isRegularFile(const Descriptor &file)
{
    struct stat status = {};
    return file.isOpen() && fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode);
}

// To open a pipe or a device can wait or have effects, so what the path leads to is held first,
// unopened, and then it is that which is opened. The kernel checks the rights at both steps.
int openRegularFile(const QString &path)
{
    const Descriptor held(open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC));
    if (!isRegularFile(held))
        return -1;
    const QByteArray unopened = "/proc/self/fd/" + QByteArray::number(held.number());
    // Not waiting for somebody's lease on the file either.
    return open(unopened.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

int openWithRights(const QString &path, const std::optional<FileRights> &rights)
{
    if (!rights)
        return openRegularFile(path);
    const BorrowedRights borrowed(*rights);
    return borrowed.areInForce() ? openRegularFile(path) : -1;
}

bool fitsOnDisk(const Descriptor &onDisk, off_t size)
{
    struct statvfs disk = {};
    return fstatvfs(onDisk.number(), &disk) == 0
        && static_cast<quint64>(size) <= static_cast<quint64>(disk.f_bavail) * disk.f_frsize;
}

bool copyBytes(const Descriptor &source, const Descriptor &copy, off_t size)
{
    off_t done = 0;
    while (done < size) {
        const off_t left = size - done;
        if (TEMP_FAILURE_RETRY(
                sendfile(copy.number(), source.number(), &done, static_cast<std::size_t>(left)))
            <= 0)
            return false;
    }
    char more{};
    return TEMP_FAILURE_RETRY(pread(source.number(), &more, 1, size)) == 0;
}

} // namespace

bool copyForStaging(
    const QString &source, const std::optional<FileRights> &rights, const QString &copy)
{
    const Descriptor from(openWithRights(source, rights));
    struct stat status = {};
    if (!from.isOpen() || fstat(from.number(), &status) != 0)
        return false;
    const Descriptor to(open(QFile::encodeName(copy).constData(),
        O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    return to.isOpen() && fitsOnDisk(to, status.st_size) && copyBytes(from, to, status.st_size);
}
