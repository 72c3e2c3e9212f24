// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QStringList>

#include <sys/inotify.h>
#include <unistd.h>

/// Tells which files of a folder are opened, in order.
class OpenWatch
{
public:
    explicit OpenWatch(const QByteArray &folder) : m_fd(inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
    {
        if (inotify_add_watch(m_fd, folder.constData(), IN_OPEN) < 0)
            qFatal("cannot watch %s", folder.constData());
    }
    ~OpenWatch() { close(m_fd); }
    Q_DISABLE_COPY(OpenWatch)

    QStringList opened() const
    {
        alignas(inotify_event) char buffer[4096];
        const ssize_t size = read(m_fd, buffer, sizeof buffer);
        QStringList names;
        for (ssize_t at = 0; at < size;) {
            const auto *const event = reinterpret_cast<const inotify_event *>(buffer + at);
            if (event->len > 0)
                names.append(QString::fromLocal8Bit(event->name));
            at += static_cast<ssize_t>(sizeof *event) + event->len;
        }
        return names;
    }

private:
    int m_fd;
};
