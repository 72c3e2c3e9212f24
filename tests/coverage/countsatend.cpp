// SPDX-License-Identifier: BSD-3-Clause
// Part of the daemon where coverage is measured: the tests end it by a signal, which would take
// the counts of executed lines along. On SIGUSR2 it writes them first.
#include <csignal>
#include <thread>

#include <unistd.h>

extern "C" void __gcov_dump();

namespace {

[[gnu::constructor]] void waitForTheEnd()
{
    sigset_t end;
    sigemptyset(&end);
    sigaddset(&end, SIGUSR2);
    pthread_sigmask(SIG_BLOCK, &end, nullptr); // in all threads to come
    std::thread([end] {
        int number = 0;
        sigwait(&end, &number);
        __gcov_dump();
        kill(getpid(), SIGKILL);
    }).detach();
}

} // namespace
