// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"

#include "launcher/fileoperations.h"
#include "launcher/logging.h"

#include <QFile>
#include <QSaveFile>
#include <QStringBuilder>
#include <QStringView>

namespace {

constexpr char groupHeader[] = "[Desktop Entry]";

// Calls visit(key, value) for each line that holds one, in the order of the file. The views
// live as long as the call. False when there is no such file.
template <typename Visitor> bool readEntry(const QString &fileName, Visitor visit)
{
    bool isMissing = false;
    const std::optional<QByteArray> bytes = readFile(fileName, &isMissing);
    if (!bytes)
        return !isMissing && QFile::exists(fileName);
    const QString text = QString::fromUtf8(bytes->constData(), bytes->size());
    bool inEntry = false;
    for (int start = 0, end = 0; start < text.size(); start = end + 1) {
        end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = text.size();
        QStringView line = QStringView(text).mid(start, end - start);
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const auto separator = line.indexOf(QLatin1Char('='));
        if (!inEntry)
            inEntry = line == QLatin1String(groupHeader);
        else if (separator >= 0)
            visit(line.left(separator), line.mid(separator + 1));
    }
    return true;
}

void warnOfMissingKey(const QString &fileName, const QString &key)
{
    qCWarning(launcherLog) << "File" << fileName << "does not have key:" << key;
}

} // namespace

DesktopEntry::DesktopEntry(const QString &fileName) : m_fileName(fileName)
{
    // Saved entries are in order, so that each key belongs at the end.
    m_isNew = !readEntry(fileName, [this](QStringView key, QStringView value) {
        m_values.insert(m_values.constEnd(), key.toString(), value.toString());
    });
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
    warnOfMissingKey(m_fileName, key);
    return {};
}

QString DesktopEntry::readValue(const QString &fileName, const QString &key)
{
    QString found;
    readEntry(fileName, [&](QStringView candidate, QStringView value) {
        if (candidate == key)
            found = value.toString();
    });
    if (found.isNull())
        warnOfMissingKey(fileName, key);
    return found;
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

void DesktopEntry::save() const
{
    qCDebug(launcherLog) << "Updating:" << m_fileName;
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qCWarning(launcherLog) << "Could not open" << m_fileName << "for writing";
        return;
    }
    QString text = QLatin1String(groupHeader) + QLatin1Char('\n');
    for (auto entry = m_values.constBegin(); entry != m_values.constEnd(); ++entry)
        text += entry.key() % QLatin1Char('=') % entry.value() % QLatin1Char('\n');
    const QByteArray bytes = text.toUtf8();
    // The commit alone would put a file in place that a full disk has cut short.
    if (file.write(bytes) != bytes.size() || !file.flush())
        file.cancelWriting();
    if (!file.commit())
        qCWarning(launcherLog) << "Could not write desktop file" << m_fileName;
}
