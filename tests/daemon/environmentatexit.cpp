// SPDX-License-Identifier: BSD-3-Clause
// Preloaded into a process, it writes the environment that the process has at its exit to
// the file that ENVIRONMENT_AT_EXIT names, one variable a line. /proc/PID/environ shows only
// the environment that a process began with.
#include <cstdio>
#include <cstdlib>
#include <memory>

extern char **environ;

namespace {

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

[[gnu::destructor]] void writeEnvironment()
{
    const char *const path = std::getenv("ENVIRONMENT_AT_EXIT");
    const std::unique_ptr<std::FILE, CloseFile> file(path ? std::fopen(path, "w") : nullptr);
    if (!file)
        return;
    for (char **variable = environ; *variable; ++variable)
        std::fprintf(file.get(), "%s\n", *variable);
}

} // namespace
