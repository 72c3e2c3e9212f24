// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"

#include "launcher/logging.h"

#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace {
constexpr char groupHeader[] = "[Desktop Entry]";
}

DesktopEntry::DesktopEntry(const QString &fileName) : m_fileName(fileName)
{
    load();
}

DesktopEntry::~DesktopEntry()
{
    if (m_dirty)
        save();
}

QString DesktopEntry::value(const QString &key) const
{
    const auto found = m_values.constFind(key);
    if (found != m_values.constEnd())
        return *found;
    qCWarning(launcherLog) << "File" << m_fileName << "does not have key:" << key;
    return {};
}

void DesktopEntry::setValue(const QString &key, const QString &value)
{
    const auto found = m_values.constFind(key);
    if (found != m_values.constEnd() && *found == value)
        return;
    m_values.insert(key, value);
    m_dirty = true;
}

void DesktopEntry::remove(const QString &key)
{
    if (m_values.remove(key) > 0)
        m_dirty = true;
}

void DesktopEntry::load()
{
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");

    QString line;
    while (line != QLatin1String(groupHeader)) {
        if (!stream.readLineInto(&line))
            return;
    }
    while (stream.readLineInto(&line)) {
        const int separator = line.indexOf(QLatin1Char('='));
        if (separator >= 0)
            m_values.insert(line.left(separator), line.mid(separator + 1));
    }
}

void DesktopEntry::save() const
{
    qCDebug(launcherLog) << "Updating:" << m_fileName;
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qCWarning(launcherLog) << "Could not open" << m_fileName << "for writing";
        return;
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    stream << groupHeader << '\n';
    for (auto entry = m_values.constBegin(); entry != m_values.constEnd(); ++entry)
        stream << entry.key() << '=' << entry.value() << '\n';
    stream.flush();
    if (!file.commit())
        qCWarning(launcherLog) << "Could not write desktop file" << m_fileName;
}
