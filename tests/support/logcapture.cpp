// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/logcapture.h"

#include <QLoggingCategory>
#include <QtTest>

#include <cstdio>

namespace {

LogCapture *current = nullptr;

QLatin1String levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QLatin1String("debug");
    case QtInfoMsg:
        return QLatin1String("info");
    case QtWarningMsg:
        return QLatin1String("warning");
    case QtCriticalMsg:
        return QLatin1String("critical");
    case QtFatalMsg:
        return QLatin1String("fatal");
    }
    return QLatin1String("unknown");
}

} // namespace

LogCapture::LogCapture(Level level)
{
    if (current)
        qFatal("two LogCapture at once");
    current = this;
    if (level == Level::All)
        QLoggingCategory::setFilterRules(QStringLiteral("com.tovra.lumd.*.debug=true"));
    m_previous = qInstallMessageHandler(handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    QLoggingCategory::setFilterRules({});
    current = nullptr;
    if (!QTest::currentTestFailed())
        return;
    for (const QString &line : qAsConst(m_all))
        fprintf(stderr, "%s\n", qPrintable(line));
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QString category = QString::fromLatin1(context.category);
    const QString line = levelName(type) + QLatin1Char(' ') + category + QLatin1Char(' ') + text;
    if (type == QtFatalMsg)
        fprintf(stderr, "%s\n", qPrintable(line)); // the process ends here
    QMutexLocker locker(&current->m_mutex);
    current->m_lines.append(line);
    current->m_all.append(line);
    const auto listener = current->m_listener;
    locker.unlock();
    if (listener)
        listener(line);
}

QStringList LogCapture::lines() const
{
    const QMutexLocker locker(&m_mutex);
    return m_lines;
}

QStringList LogCapture::lines(const QString &category) const
{
    const QString mark = QLatin1Char(' ') + category + QLatin1Char(' ');
    QStringList found;
    for (const QString &line : lines()) {
        if (line.indexOf(mark) == line.indexOf(QLatin1Char(' ')))
            found.append(line);
    }
    return found;
}

QStringList LogCapture::take()
{
    const QMutexLocker locker(&m_mutex);
    QStringList lines;
    lines.swap(m_lines);
    return lines;
}

void LogCapture::clear()
{
    take();
}

void LogCapture::setListener(const std::function<void(const QString &)> &listener)
{
    const QMutexLocker locker(&m_mutex);
    m_listener = listener;
}
