// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// The windows on the simulated screen, one a package. A window is there only after it was
/// asked for a number of times, as an app takes its time to start.
class WindowList
{
public:
    explicit WindowList(int polls) : m_polls(polls) { }

    /// How often a window that is opened from now on is asked for in vain; a window that is
    /// there already stays.
    void setPolls(int polls) { m_polls = polls; }
    void open(const QString &package)
    {
        if (!m_pollsLeft.contains(package))
            m_pollsLeft.insert(package, m_polls);
    }
    void close(const QString &package) { m_pollsLeft.remove(package); }
    /// Packages whose app was started, also those whose window is still to come.
    QStringList packages() const { return m_pollsLeft.keys(); }

    /// Whether the window is there.
    bool poll(const QString &package)
    {
        const auto found = m_pollsLeft.find(package);
        if (found == m_pollsLeft.end() || *found <= 0)
            return found != m_pollsLeft.end();
        --*found;
        return false;
    }

private:
    int m_polls;
    QMap<QString, int> m_pollsLeft;
};
