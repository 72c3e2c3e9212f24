// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/plaintext.h"

#include <QLocale>

namespace {

// Embeddings, overrides and isolates: https://www.unicode.org/reports/tr9/
bool turnsDirection(QChar character)
{
    return (character >= QChar(0x202a) && character <= QChar(0x202e))
        || (character >= QChar(0x2066) && character <= QChar(0x2069));
}

QChar visible(QChar character)
{
    constexpr ushort controlPictures = 0x2400;
    constexpr ushort deletePicture = 0x2421;
    constexpr ushort anyOther = 0xfffd;
    const ushort code = character.unicode();
    if (code < 0x20)
        return QChar(controlPictures + code);
    if (code == 0x7f)
        return QChar(deletePicture);
    return (code >= 0x80 && code < 0xa0) || code == 0x2028 || code == 0x2029 ? QChar(anyOther)
                                                                             : character;
}

} // namespace

QString shownText(const QString &text, int length)
{
    QString shown;
    for (const QChar character : text) {
        if (turnsDirection(character))
            continue;
        if (shown.size() >= length && !character.isLowSurrogate())
            return shown + QChar(0x2026);
        shown.append(visible(character));
    }
    return shown;
}

QString shownBytes(qint64 bytes)
{
    return QLocale().formattedDataSize(qMax(bytes, qint64(0)), 1, QLocale::DataSizeSIFormat);
}
