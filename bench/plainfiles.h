// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

/// The yardsticks' file access: system calls, a reused buffer and nothing else.
class PlainFiles
{
public:
    /// Opens, stats, reads and closes each file. Gives the number of bytes read; a failure
    /// ends the process.
    std::size_t readAll(const std::vector<std::string> &paths);

    /// Lists a folder, as readdir gives it. Gives the number of names.
    static std::size_t list(const char *folder);

private:
    std::size_t read(const std::string &path);

    std::vector<char> m_buffer;
};
