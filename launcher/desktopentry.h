// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <string_view>
#include <vector>

/// One desktop entry file (freedesktop Desktop Entry format), loaded at construction and
/// saved at destruction when anything has changed. A file that is missing or cannot be read
/// counts as an empty entry. Keys of all sections after "[Desktop Entry]" are taken into
/// that one section.
class DesktopEntry
{
public:
    explicit DesktopEntry(const QString &fileName);
    /// Saves what has changed since commit().
    ~DesktopEntry();

    Q_DISABLE_COPY_MOVE(DesktopEntry)

    /// Whether there was no file when the entry was made, nor a link that leads to one.
    bool isNew() const { return m_isNew; }

    /// The value of @p key. A null string, with a warning, when the entry lacks it.
    QString value(const QString &key) const;
    bool contains(const QString &key) const;
    /// The same for the entry in the file @p fileName, without making an object of the rest.
    /// @p key is plain ASCII.
    static QString readValue(const QString &fileName, const char *key);
    /// Blanks take the place of control characters in @p value, so that it stays on its line.
    void setValue(const QString &key, const QString &value);
    void remove(const QString &key);
    /// Whether the file holds the bytes @p text, so that setAll() would change nothing.
    bool isSavedAs(const QByteArray &text) const { return !m_isDirty && m_loaded == text; }
    /// Sets every key of @p text, an entry as it is saved.
    void setAll(const QByteArray &text);

    /// Replaces the file in one step when anything was set. A failure is logged, the old file
    /// stays and the change is lost. True when the file holds something else than before.
    bool commit();

private:
    struct Line
    {
        std::string_view text; // without what ends it
        std::size_t separator; // where in the text the "=" behind the key is

        std::string_view key() const { return text.substr(0, separator); }
        std::string_view value() const { return text.substr(separator + 1); }
    };
    using Lines = std::vector<Line>;

    template <typename Visitor> static void readLines(std::string_view text, Visitor visit);
    void parse() const;
    void insert(const Line &line) const; // in the place of one of the same key
    Lines::const_iterator find(std::string_view key) const;
    void set(const Line &line);
    bool save() const;

    const QString m_fileName;
    // What the lines are views of: the file, and what has been set since.
    mutable QByteArray m_loaded;
    QVector<QByteArray> m_set;
    mutable Lines m_lines; // in the order of their keys, once they are asked for
    mutable bool m_isParsed = false;
    bool m_isDirty = false;
    bool m_isNew = false;
};
