// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/runtimeoffer.h"

#include "runtime/seatname.h"

#include <vsu.h>
#include <vsurepomanager.h>

#include <QFile>
#include <QStringList>

#include <systemd/sd-login.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char package[] = "aliendalvik";
constexpr int failed = 1;

// The device mode in which the development repositories are in use.
constexpr int rndMode = 2;

// The kernel's own number for groups that it cannot tell.
constexpr gid_t nogroup = 65534;

int reportFailure()
{
    std::fprintf(stderr, "Could not install ACL package: %s\n", package);
    return failed;
}

// Root has its own already. A user whom the lists do not know has none.
bool takeGroupsOf(uid_t uid)
{
    if (uid == 0)
        return true;
    if (const passwd *const user = getpwuid(uid))
        return initgroups(user->pw_name, user->pw_gid) == 0 && setgid(user->pw_gid) == 0;
    return setgroups(0, nullptr) == 0 && setgid(nogroup) == 0;
}

int runLauncher()
{
    uid_t uid{};
    if (sd_seat_get_active(seatName, nullptr, &uid) >= 0
        && (!takeGroupsOf(uid) || setuid(uid) != 0)) {
        std::fprintf(stderr, "Could not setuid to logged-in user");
        return failed;
    }
    execl("/usr/bin/invoker", "invoker", "--type=sorbel-qt5", "--no-wait", "/usr/bin/store-client",
        "showApp", package, nullptr);
    return reportFailure();
}

int waitForLauncher(pid_t launcher)
{
    int status{};
    if (waitpid(launcher, &status, 0) == -1) {
        std::fprintf(
            stderr, "Could not install ACL package: %s (%s)\n", package, std::strerror(errno));
        return failed;
    }
    if (!WIFEXITED(status))
        return reportFailure();
    return WEXITSTATUS(status);
}

} // namespace

bool runtimeImageExists()
{
    return QFile::exists(QStringLiteral("/opt/alien/system.img"));
}

bool runtimeInRepos()
{
    const VsuRepoManager manager;
    const bool rnd = Vsu().deviceMode() == rndMode;
    constexpr int noFilter = 0;
    return manager.repos(rnd, noFilter).contains(QLatin1String(package));
}

int offerRuntimePackage()
{
    const pid_t launcher = fork();
    if (launcher < 0)
        return reportFailure();
    return launcher == 0 ? runLauncher() : waitForLauncher(launcher);
}
