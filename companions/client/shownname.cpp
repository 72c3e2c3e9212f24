// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"

namespace {

// Of the invisible characters these take part in letters and emoji.
bool joinsLetters(QChar character)
{
    constexpr ushort zeroWidthNonJoiner = 0x200c;
    constexpr ushort zeroWidthJoiner = 0x200d;
    return character == QChar(zeroWidthNonJoiner) || character == QChar(zeroWidthJoiner);
}

QString escape(QChar character)
{
    switch (character.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\t':
        return QStringLiteral("\\t");
    case '\r':
        return QStringLiteral("\\r");
    case '\\':
        return QStringLiteral("\\\\");
    default:
        break;
    }
    constexpr int hexadecimal = 16;
    constexpr ushort lastOfOneByte = 0xff;
    const bool isShort = character.unicode() <= lastOfOneByte;
    return QStringLiteral("\\%1%2")
        .arg(isShort ? QLatin1Char('x') : QLatin1Char('u'))
        .arg(character.unicode(), isShort ? 2 : 4, hexadecimal, QLatin1Char('0'));
}

} // namespace

bool isShownEscaped(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Other_Format:
        return !joinsLetters(character);
    default:
        return character == QLatin1Char('\\');
    }
}

QString shownName(const QString &text)
{
    QString shown;
    shown.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool isPair =
            character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair)
            shown.append(character).append(text.at(++i));
        else if (character.isSurrogate() || isShownEscaped(character))
            shown.append(escape(character));
        else
            shown.append(character);
    }
    return shown;
}
