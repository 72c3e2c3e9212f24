// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/fileoperations.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// In bytes; nothing that is read here comes near it, and a QByteArray holds it.
constexpr off_t largestFile = 1 << 30;

struct OpenFile
{
    ~OpenFile()
    {
        if (descriptor >= 0)
            close(descriptor);
    }

    const int descriptor;
};

struct CloseDirectory
{
    void operator()(DIR *directory) const { closedir(directory); }
};

std::optional<QByteArray> readOpenFile(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || status.st_size > largestFile)
        return {};
    // One byte more than there should be: a read that does not fill the space has met the
    // end of the file.
    QByteArray bytes(static_cast<int>(status.st_size) + 1, Qt::Uninitialized);
    const ssize_t size = read(descriptor, bytes.data(), static_cast<size_t>(bytes.size()));
    if (size < 0)
        return {};
    bytes.truncate(static_cast<int>(size));
    return bytes;
}

bool isFileOrFolder(const dirent &entry, const QString &folder, const QString &name)
{
    if (entry.d_type == DT_REG || entry.d_type == DT_DIR)
        return true;
    const QFileInfo target(folder + name);
    return target.isFile() || target.isDir() || (target.isSymLink() && target.exists());
}

} // namespace

std::optional<QByteArray> readFile(const QString &path, bool *isMissing)
{
    if (isMissing)
        *isMissing = false;
    // The system would take the name for one that ends there.
    if (path.contains(QChar::Null))
        return {};
    const OpenFile file{open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC)};
    if (file.descriptor >= 0)
        return readOpenFile(file.descriptor);
    if (isMissing)
        *isMissing = errno == ENOENT;
    return {};
}

QStringList listFiles(const QString &folder, const QString &prefix, const QString &suffix)
{
    struct Found
    {
        QString sortKey;
        QString name;
    };
    std::vector<Found> found;
    const std::unique_ptr<DIR, CloseDirectory> directory(
        opendir(QFile::encodeName(folder).constData()));
    while (const dirent *const entry = directory ? readdir(directory.get()) : nullptr) {
        const QString name = QFile::decodeName(entry->d_name);
        if (name.startsWith(prefix, Qt::CaseInsensitive)
            && name.endsWith(suffix, Qt::CaseInsensitive)
            && QFile::encodeName(name) == entry->d_name && isFileOrFolder(*entry, folder, name))
            found.push_back({name.toLower(), name});
    }
    std::sort(found.begin(), found.end(),
        [](const Found &left, const Found &right) { return left.sortKey < right.sortKey; });

    QStringList names;
    for (const Found &each : found)
        names.append(each.name);
    return names;
}

bool fileDiffers(const QString &path, const QByteArray &bytes)
{
    return readFile(path) != bytes;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    // The commit alone would put a file in place that a full disk has cut short.
    if (bytes.isEmpty() || file.write(bytes) != bytes.size() || !file.flush())
        return false;
    return file.commit();
}
