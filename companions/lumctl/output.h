// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <cstdio>

/// Writes the text as UTF-8.
void print(FILE *stream, const QString &text);

/// What lumctl prints. Texts of apps have been through shownName() before they come here.
class Output
{
public:
    enum class Form { Words, Json };

    explicit Output(Form form);
    /// Clears the progress line.
    ~Output();
    Q_DISABLE_COPY(Output)

    bool isJson() const { return m_form == Form::Json; }
    /// Standard output is a terminal that moves its cursor.
    bool isTerminal() const { return m_isTerminal; }

    /// A line on standard output; nothing as JSON.
    void line(const QString &text);
    /// A line on standard error behind the program's name; nothing as JSON.
    void error(const QString &text);
    /// The document, or the event, of the JSON form, on one line; nothing as words.
    void document(const QJsonObject &document);

    /// Columns with a heading on a terminal, where the last is cut to the width that is left;
    /// else the bare texts with a tab between.
    void table(const QStringList &heading, const QVector<QStringList> &rows);
    /// Names and values below each other.
    void fields(const QVector<QStringList> &rows);

    /// Shows what is waited for, on a terminal only, until the next line or an empty text.
    void progress(const QString &text);

private:
    QString emphasised(const QString &text, const char *code) const;

    Form m_form;
    bool m_isTerminal;
    bool m_hasColour;
    bool m_hasErrorColour;
    bool m_hasProgress = false;
};

/// The columns of a terminal that the text takes up.
int shownWidth(const QString &text);
/// The text, or as much of its beginning as fits together with an ellipsis.
QString cutToWidth(const QString &text, int width);
