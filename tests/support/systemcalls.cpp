// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/systemcalls.h"

#include <QFile>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

void SystemCalls::refuse(const std::vector<long> &numbers, int error)
{
    constexpr unsigned short load = BPF_LD | BPF_W | BPF_ABS;
    constexpr unsigned short jumpIfEqual = BPF_JMP | BPF_JEQ | BPF_K;
    constexpr unsigned short end = BPF_RET | BPF_K;
    std::vector<sock_filter> program = {{load, 0, 0, offsetof(seccomp_data, nr)}};
    for (const long number : numbers) {
        program.push_back({jumpIfEqual, 0, 1, static_cast<unsigned int>(number)});
        program.push_back({end, 0, 0, SECCOMP_RET_ERRNO | static_cast<unsigned int>(error)});
    }
    program.push_back({end, 0, 0, SECCOMP_RET_ALLOW});
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0
        || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        qFatal("cannot refuse system calls: %s", strerror(errno));
}

std::vector<long> SystemCalls::ofChmod()
{
    return {
#ifdef SYS_chmod
        SYS_chmod,
#endif
        SYS_fchmodat,
    };
}

std::vector<long> SystemCalls::ofChown()
{
    return {
#ifdef SYS_chown
        SYS_chown,
#endif
        SYS_fchownat,
    };
}

std::vector<long> SystemCalls::ofFork()
{
    return {
#ifdef SYS_fork
        SYS_fork,
#endif
        SYS_clone,
    };
}

bool SystemCalls::hasUser(unsigned int uid)
{
    QFile map(QStringLiteral("/proc/self/uid_map"));
    if (!map.open(QIODevice::ReadOnly))
        qFatal("cannot read the users of the namespace");
    const QList<QByteArray> lines = map.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() != 3)
            continue;
        const qulonglong first = words.at(0).toULongLong();
        if (uid >= first && uid - first < words.at(2).toULongLong())
            return true;
    }
    return false;
}
