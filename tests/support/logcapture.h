// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMutex>
#include <QStringList>

#include <functional>

/// Records log messages while it lives, instead of printing them. What it recorded is
/// printed at its end if the running test has failed. One at a time; made and destroyed on
/// the main thread, records from every thread.
class LogCapture
{
public:
    enum class Level {
        All, ///< debug messages of "com.tovra.lumd.*" too
        Default, ///< what the categories let through by themselves
    };

    explicit LogCapture(Level level = Level::All);
    ~LogCapture();
    Q_DISABLE_COPY(LogCapture)

    /// One line a message: level, category, text, as in
    /// "debug com.tovra.lumd.config Original path:  \"/a\"". Levels: debug, info, warning,
    /// critical, fatal.
    QStringList lines() const;
    /// The same of one category alone.
    QStringList lines(const QString &category) const;
    /// The lines, and an empty record afterwards.
    QStringList take();
    void clear();
    /// Is told of each line, on the thread that logs it; nothing for nobody.
    void setListener(const std::function<void(const QString &)> &listener);

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    mutable QMutex m_mutex;
    QStringList m_lines;
    QStringList m_all;
    std::function<void(const QString &)> m_listener;
    QtMessageHandler m_previous = nullptr;
};
