// SPDX-License-Identifier: BSD-3-Clause
#include "bench/plainfiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void fail(const char *path)
{
    std::perror(path);
    std::exit(1);
}

} // namespace

std::size_t PlainFiles::readAll(const std::vector<std::string> &paths)
{
    std::size_t total = 0;
    for (const std::string &path : paths)
        total += read(path);
    return total;
}

std::size_t PlainFiles::read(const std::string &path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || fstat(file, &status) != 0)
        fail(path.c_str());
    const auto size = static_cast<std::size_t>(status.st_size);
    if (m_buffer.size() < size)
        m_buffer.resize(size);
    if (::read(file, m_buffer.data(), size) != status.st_size)
        fail(path.c_str());
    close(file);
    return size;
}

std::size_t PlainFiles::list(const char *folder)
{
    DIR *const directory = opendir(folder);
    if (!directory)
        fail(folder);
    std::size_t count = 0;
    while (readdir(directory))
        ++count;
    closedir(directory);
    return count;
}
