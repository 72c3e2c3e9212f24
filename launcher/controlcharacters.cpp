// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/controlcharacters.h"

#include <algorithm>

namespace {

// What is printable in ASCII comes first: it is nearly everything.
bool isControl(QChar character)
{
    const ushort unit = character.unicode();
    if (unit >= 0x20 && unit < 0x7f)
        return false;
    return unit < 0xa0 || unit == QChar::LineSeparator || unit == QChar::ParagraphSeparator;
}

} // namespace

bool holdsControlCharacters(const QString &text)
{
    return std::any_of(text.begin(), text.end(), isControl);
}

QString withoutControlCharacters(QString text)
{
    if (holdsControlCharacters(text))
        std::replace_if(text.begin(), text.end(), isControl, QLatin1Char(' '));
    return text;
}
