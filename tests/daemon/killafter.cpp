// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/killafter.h"

#include <QtGlobal>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

KillAfter::KillAfter(int processId, int changes, int microseconds)
    : m_processId(processId), m_watch(inotify_init1(IN_CLOEXEC)), m_end(eventfd(0, EFD_CLOEXEC))
{
    for (const char *folder :
        {"/usr/share/applications", "/usr/share/tovra-settings/entries", "/var/lib/lumd"}) {
        constexpr uint32_t events =
            IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE;
        if (inotify_add_watch(m_watch, folder, events) < 0)
            qFatal("cannot watch %s", folder);
    }
    m_thread = std::thread([this, changes, microseconds] {
        watch(changes);
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::microseconds(microseconds);
        // A sleep is not that short.
        while (std::chrono::steady_clock::now() < deadline) { }
        ::kill(m_processId, SIGKILL);
    });
}

KillAfter::~KillAfter()
{
    eventfd_write(m_end, 1);
    m_thread.join();
    ::close(m_watch);
    ::close(m_end);
}

void KillAfter::watch(int changes) const
{
    alignas(inotify_event) char events[4096];
    while (changes > 0) {
        pollfd sources[] = {{m_watch, POLLIN, 0}, {m_end, POLLIN, 0}};
        if (::poll(sources, 2, -1) < 0 || (sources[0].revents & POLLIN) == 0)
            return;
        const ssize_t size = ::read(m_watch, events, sizeof events);
        for (ssize_t at = 0; at < size; --changes)
            at += ssize_t(sizeof(inotify_event))
                + ssize_t(reinterpret_cast<const inotify_event *>(events + at)->len);
    }
}
