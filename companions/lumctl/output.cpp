// SPDX-License-Identifier: BSD-3-Clause
#include "output.h"

#include "client/shownname.h"

#include <QJsonDocument>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cstdio>
#include <cwchar>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr char bold[] = "\x1b[1m";
constexpr char red[] = "\x1b[31m";
constexpr char plain[] = "\x1b[0m";
constexpr char clearLine[] = "\r\x1b[K";
constexpr int columnGap = 2;

bool isCapable(int descriptor)
{
    return isatty(descriptor) != 0 && qgetenv("TERM") != "dumb"
        && !qEnvironmentVariableIsEmpty("TERM");
}

int terminalWidth()
{
    constexpr int usual = 80;
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return usual;
}

/// The text with what a terminal must not get written as JSON writes it.
QString withoutControlCodes(const QString &json)
{
    constexpr int hexadecimal = 16;
    QString safe;
    safe.reserve(json.size());
    for (const QChar character : json) {
        if (character != QLatin1Char('\\') && isShownEscaped(character))
            safe.append(
                QStringLiteral("\\u%1").arg(character.unicode(), 4, hexadecimal, QLatin1Char('0')));
        else
            safe.append(character);
    }
    return safe;
}

} // namespace

void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

Output::Output(Form form)
    : m_form(form),
      m_isTerminal(isCapable(STDOUT_FILENO)),
      m_hasColour(m_isTerminal && qEnvironmentVariableIsEmpty("NO_COLOR")),
      m_hasErrorColour(isCapable(STDERR_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR"))
{
}

Output::~Output()
{
    progress({});
}

void Output::line(const QString &text)
{
    if (isJson())
        return;
    progress({});
    print(stdout, text + QLatin1Char('\n'));
    std::fflush(stdout);
}

void Output::error(const QString &text)
{
    if (isJson())
        return;
    progress({});
    const QString name = QStringLiteral("lumctl:");
    print(stderr,
        (m_hasErrorColour ? QLatin1String(red) + name + QLatin1String(plain) : name)
            + QLatin1Char(' ') + text + QLatin1Char('\n'));
}

void Output::document(const QJsonObject &document)
{
    if (!isJson())
        return;
    const QByteArray json = QJsonDocument(document).toJson(QJsonDocument::Compact);
    print(stdout, withoutControlCodes(QString::fromUtf8(json)) + QLatin1Char('\n'));
    std::fflush(stdout);
}

void Output::table(const QStringList &heading, const QVector<QStringList> &rows)
{
    if (!m_isTerminal) {
        for (const QStringList &row : rows)
            line(row.join(QLatin1Char('\t')));
        return;
    }
    const int columns = heading.size();
    QVector<int> widths(columns, 0);
    const auto measure = [&widths, columns](const QStringList &row) {
        for (int i = 0; i < columns - 1; ++i)
            widths[i] = std::max(widths.at(i), shownWidth(row.at(i)));
    };
    measure(heading);
    std::for_each(rows.cbegin(), rows.cend(), measure);
    // One endless text must not push all others off the screen.
    const int widest = terminalWidth() / columns;
    const auto shown = [&widths, widest, columns](const QStringList &row) {
        QString text;
        for (int i = 0; i < columns - 1; ++i) {
            const int width = std::min(widths.at(i), widest);
            const QString &cell = row.at(i);
            text +=
                cell + QString(std::max(0, width - shownWidth(cell)) + columnGap, QLatin1Char(' '));
        }
        return text
            + cutToWidth(row.last(), std::max(columnGap, terminalWidth() - shownWidth(text)));
    };
    line(emphasised(shown(heading), bold));
    for (const QStringList &row : rows)
        line(shown(row));
}

void Output::fields(const QVector<QStringList> &rows)
{
    int widest = 0;
    for (const QStringList &row : rows)
        widest = std::max(widest, shownWidth(row.first()));
    for (const QStringList &row : rows)
        line(row.first() + QString(widest - shownWidth(row.first()) + columnGap, QLatin1Char(' '))
            + row.last());
}

void Output::progress(const QString &text)
{
    if (!m_isTerminal || isJson() || (text.isEmpty() && !m_hasProgress))
        return;
    m_hasProgress = !text.isEmpty();
    print(stdout, QLatin1String(clearLine) + cutToWidth(text, terminalWidth() - 1));
    std::fflush(stdout);
}

QString Output::emphasised(const QString &text, const char *code) const
{
    return m_hasColour ? QLatin1String(code) + text + QLatin1String(plain) : text;
}

int shownWidth(const QString &text)
{
    int width = 0;
    const QVector<uint> points = text.toUcs4();
    for (const uint point : points)
        width += std::max(0, wcwidth(wchar_t(point)));
    return width;
}

QString cutToWidth(const QString &text, int width)
{
    if (shownWidth(text) <= width)
        return text;
    // Where a reader sees one letter, it is not torn apart.
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    int end = 0;
    for (int next = finder.toNextBoundary(); next >= 0; next = finder.toNextBoundary()) {
        if (shownWidth(text.left(next)) > width - 1)
            break;
        end = next;
    }
    return text.left(end) + QChar(0x2026);
}
