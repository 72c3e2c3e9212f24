// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/fileoperations.h"

#include "launcher/logging.h"
#include "launcher/utf8.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringBuilder>

#include <algorithm>
#include <memory>
#include <string>
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
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largestFile)
        return {};
    QByteArray bytes(static_cast<int>(status.st_size), Qt::Uninitialized);
    const ssize_t size = read(descriptor, bytes.data(), static_cast<size_t>(bytes.size()));
    if (size < 0)
        return {};
    bytes.truncate(static_cast<int>(size));
    return bytes;
}

// The same as QFile::encodeName, which asks for the codec each time.
QByteArray encoded(const QString &path)
{
    QByteArray bytes(path.size(), Qt::Uninitialized);
    ushort seen{};
    std::transform(path.begin(), path.end(), bytes.begin(), [&seen](QChar character) {
        seen |= character.unicode();
        return static_cast<char>(character.unicode());
    });
    return seen < 0x80 ? bytes : QFile::encodeName(path);
}

bool isFileOrFolder(const dirent &entry, const QString &path)
{
    if (entry.d_type == DT_REG || entry.d_type == DT_DIR)
        return true;
    const QFileInfo target(path);
    return target.isFile() || target.isDir() || (target.isSymLink() && target.exists());
}

struct Found
{
    std::string sortKey;
    QString path;
};

// For a name that is plain ASCII, as nearly all are.
std::optional<Found> matchAscii(
    std::string_view name, QLatin1String folder, QLatin1String prefix, QLatin1String suffix)
{
    const QLatin1String text(name.data(), static_cast<int>(name.size()));
    if (text.size() < prefix.size() + suffix.size() || !text.startsWith(prefix, Qt::CaseInsensitive)
        || !text.endsWith(suffix, Qt::CaseInsensitive))
        return {};
    Found found{std::string(name), folder % text};
    for (char &byte : found.sortKey) {
        if (byte >= 'A' && byte <= 'Z')
            byte = static_cast<char>(byte - 'A' + 'a');
    }
    return found;
}

std::optional<Found> match(
    const char *bytes, QLatin1String folder, QLatin1String prefix, QLatin1String suffix)
{
    if (Utf8::isAscii(bytes))
        return matchAscii(bytes, folder, prefix, suffix);
    const QString name = QFile::decodeName(bytes);
    if (!name.startsWith(prefix, Qt::CaseInsensitive) || !name.endsWith(suffix, Qt::CaseInsensitive)
        || QFile::encodeName(name) != bytes)
        return {};
    return Found{Utf8::sortKey(Utf8::view(name.toLower().toUtf8())), folder % name};
}

} // namespace

std::optional<QByteArray> readFile(const QString &path)
{
    const QByteArray name = encoded(path);
    // The system would take the name for one that ends there.
    if (Utf8::view(name).find('\0') != std::string_view::npos)
        return {};
    // Without O_NONBLOCK a FIFO would be waited for, until somebody writes into it.
    const OpenFile file{open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)};
    if (file.descriptor < 0)
        return {};
    return readOpenFile(file.descriptor);
}

bool fileExists(const QString &path)
{
    return access(encoded(path).constData(), F_OK) == 0;
}

QStringList listFiles(QLatin1String folder, QLatin1String prefix, QLatin1String suffix)
{
    std::vector<Found> all;
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(folder.data()));
    while (const dirent *const entry = directory ? readdir(directory.get()) : nullptr) {
        std::optional<Found> found = match(entry->d_name, folder, prefix, suffix);
        if (found && isFileOrFolder(*entry, found->path))
            all.push_back(std::move(*found));
    }
    std::sort(all.begin(), all.end(),
        [](const Found &left, const Found &right) { return left.sortKey < right.sortKey; });

    QStringList paths;
    for (const Found &each : all)
        paths.append(each.path);
    return paths;
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

bool removeFile(const QString &path)
{
    if (QFile::remove(path))
        return true;
    qCWarning(launcherLog) << "Could not remove:" << path;
    return false;
}
