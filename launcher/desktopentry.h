// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMap>
#include <QString>

/// One desktop entry file (freedesktop Desktop Entry format), loaded at construction and
/// saved at destruction when anything has changed. A file that is missing or cannot be read
/// counts as an empty entry. Keys of all sections after "[Desktop Entry]" are taken into
/// that one section.
class DesktopEntry
{
public:
    explicit DesktopEntry(const QString &fileName);
    /// Replaces the file in one step when anything has changed. A failure is logged, the old
    /// file stays and the change is lost.
    ~DesktopEntry();

    Q_DISABLE_COPY_MOVE(DesktopEntry)

    /// Whether there was no file when the entry was made, nor a link that leads to one.
    bool isNew() const { return m_isNew; }

    /// The value of @p key. A null string, with a warning, when the entry lacks it.
    QString value(const QString &key) const;
    /// The same for the entry in the file @p fileName, without making an object of the rest.
    static QString readValue(const QString &fileName, const QString &key);
    void setValue(const QString &key, const QString &value);
    void remove(const QString &key);

private:
    void save() const;

    const QString m_fileName;
    QMap<QString, QString> m_values;
    bool m_dirty = false;
    bool m_isNew = false;
};
