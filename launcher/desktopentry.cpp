// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"

#include "launcher/controlcharacters.h"
#include "launcher/fileoperations.h"
#include "launcher/logging.h"
#include "launcher/utf8.h"

#include <QFile>
#include <QSaveFile>

#include <utility>

namespace {

constexpr char groupHeader[] = "[Desktop Entry]";
constexpr char groupHeaderLine[] = "[Desktop Entry]\n";

// Takes a line off the front of the text.
std::string_view takeLine(std::string_view &text)
{
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

} // namespace

DesktopEntry::DesktopEntry(const QString &fileName) : m_fileName(fileName)
{
    const std::optional<QByteArray> bytes = readFile(fileName);
    if (bytes)
        m_loaded = *bytes;
    else
        m_isNew = !QFile::exists(fileName);
}

DesktopEntry::~DesktopEntry()
{
    commit();
}

bool DesktopEntry::commit()
{
    return std::exchange(m_isDirty, false) && save();
}

template <typename Visitor> void DesktopEntry::readLines(std::string_view text, Visitor visit)
{
    bool inEntry = false;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        const std::size_t separator = line.find('=');
        if (!inEntry)
            inEntry = line == groupHeader;
        else if (separator != std::string_view::npos)
            visit(Line{line, separator});
    }
}

void DesktopEntry::parse() const
{
    if (m_isParsed)
        return;
    m_isParsed = true;
    // Decoded and encoded again, the text is valid and without a byte order mark.
    if (!Utf8::isAscii(Utf8::view(m_loaded)))
        m_loaded = QString::fromUtf8(m_loaded.constData(), m_loaded.size()).toUtf8();
    readLines(Utf8::view(m_loaded), [this](const Line &line) { insert(line); });
}

void DesktopEntry::insert(const Line &line) const
{
    // Saved entries are in order, so that each line belongs at the end.
    auto place = m_lines.end();
    if (!m_lines.empty() && !Utf8::isBefore(m_lines.back().key(), line.key()))
        place = std::lower_bound(
            m_lines.begin(), m_lines.end(), line, [](const Line &left, const Line &right) {
                return Utf8::isBefore(left.key(), right.key());
            });
    if (place != m_lines.end() && place->key() == line.key())
        *place = line;
    else
        m_lines.insert(place, line);
}

DesktopEntry::Lines::const_iterator DesktopEntry::find(std::string_view key) const
{
    parse();
    return std::find_if(
        m_lines.cbegin(), m_lines.cend(), [&](const Line &line) { return line.key() == key; });
}

QString DesktopEntry::value(const QString &key) const
{
    const QByteArray name = key.toUtf8();
    const auto found = find(Utf8::view(name));
    if (found == m_lines.cend()) {
        qCWarning(launcherLog) << "File" << m_fileName << "does not have key:" << key;
        return {};
    }
    // With the separator in front, since a byte order mark at the very front would be lost.
    const std::string_view tail = found->text.substr(found->separator);
    return QString::fromUtf8(tail.data(), static_cast<int>(tail.size())).mid(1);
}

QString DesktopEntry::readValue(const QString &fileName, const char *key)
{
    // In a file that begins as lumd writes it every line counts, and the last of the key wins.
    const QByteArray bytes = readFile(fileName).value_or(QByteArray());
    const std::string_view text = Utf8::view(bytes);
    const std::string lineStart = '\n' + std::string(key) + '=';
    const std::size_t found = text.rfind(lineStart);
    if (bytes.startsWith(groupHeaderLine) && found != std::string_view::npos) {
        std::string_view rest = text.substr(found + lineStart.size());
        const std::string_view value = takeLine(rest);
        if (Utf8::isAscii(value))
            return QString::fromLatin1(value.data(), static_cast<int>(value.size()));
    }
    return DesktopEntry(fileName).value(QLatin1String(key));
}

bool DesktopEntry::contains(const QString &key) const
{
    const QByteArray name = key.toUtf8();
    return find(Utf8::view(name)) != m_lines.cend();
}

void DesktopEntry::setValue(const QString &key, const QString &value)
{
    const QByteArray name = key.toUtf8();
    m_set.append(name + '=' + withoutControlCharacters(value).toUtf8());
    set({Utf8::view(m_set.last()), static_cast<std::size_t>(name.size())});
}

void DesktopEntry::set(const Line &line)
{
    const auto found = find(line.key());
    if (found != m_lines.cend() && found->value() == line.value())
        return;
    insert(line);
    m_isDirty = true;
}

void DesktopEntry::remove(const QString &key)
{
    const QByteArray name = key.toUtf8();
    const auto found = find(Utf8::view(name));
    if (found == m_lines.cend())
        return;
    m_lines.erase(found);
    m_isDirty = true;
}

void DesktopEntry::setAll(const QByteArray &text)
{
    m_set.append(text);
    readLines(Utf8::view(text), [this](const Line &line) { set(line); });
}

bool DesktopEntry::save() const
{
    qCDebug(launcherLog) << "Updating:" << m_fileName;
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qCWarning(launcherLog) << "Could not open" << m_fileName << "for writing";
        return false;
    }
    QByteArray bytes(groupHeaderLine);
    for (const Line &line : m_lines)
        bytes.append(line.text.data(), static_cast<int>(line.text.size())).append('\n');
    // The commit alone would put a file in place that a full disk has cut short.
    if (file.write(bytes) != bytes.size() || !file.flush())
        file.cancelWriting();
    if (file.commit())
        return bytes != m_loaded;
    qCWarning(launcherLog) << "Could not write desktop file" << m_fileName;
    return false;
}
