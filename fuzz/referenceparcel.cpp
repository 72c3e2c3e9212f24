// SPDX-License-Identifier: BSD-3-Clause
#include "fuzz/referenceparcel.h"

#include <QStringList>

#include <algorithm>
#include <cstring>

template <typename Number> Number ReferenceParcel::number(Number otherwise)
{
    if (m_bytes.size() < int(sizeof(Number)))
        return otherwise;
    std::memcpy(&otherwise, m_bytes.constData(), sizeof(Number));
    m_bytes.remove(0, sizeof(Number));
    return otherwise;
}

qint32 ReferenceParcel::int32()
{
    return number<qint32>(-1);
}

QString ReferenceParcel::string()
{
    ReferenceParcel ahead(*this);
    const qint32 length = ahead.int32();
    if (length < 0) {
        if (length == -1)
            m_bytes = ahead.m_bytes;
        return {};
    }
    const qint64 size = (qint64(length) + 2) / 2 * 4; // with a zero, in whole words
    if (size > ahead.m_bytes.size() || ahead.m_bytes.mid(length * 2, 2) != QByteArray(2, '\0'))
        return {};
    QString text = QLatin1String("");
    for (int i = 0; i < length; ++i)
        text += QChar(uchar(ahead.m_bytes[2 * i]), uchar(ahead.m_bytes[2 * i + 1]));
    m_bytes = ahead.m_bytes.mid(int(size));
    const bool isSwapped = text.startsWith(QChar(0xfffe));
    if (isSwapped || text.startsWith(QChar(0xfeff)))
        text.remove(0, 1);
    for (int i = 0; isSwapped && i < text.size(); ++i)
        text[i] = QChar(text[i].row(), text[i].cell());
    return text;
}

QStringList ReferenceParcel::strings()
{
    QStringList strings;
    const auto count = number<qint32>(0);
    for (qint32 i = 0; i < count && --m_itemsLeft >= 0; ++i)
        strings.append(string());
    return strings;
}

QVariant ReferenceParcel::value()
{
    switch (number<qint32>(-1)) {
    case 0:
        return string();
    case 1:
        return int32();
    case 6:
        return number<qint64>(-1);
    case 8:
        return number<double>(-1.0);
    case 9:
        return number<qint32>(0) != 0;
    case 14:
        return strings();
    default:
        return {};
    }
}

QVariantMap ReferenceParcel::bundle()
{
    QVariantMap bundle;
    int32(); // its length, which decides nothing
    if (int32() != 0x4c444e42)
        return bundle;
    const qint32 count = int32();
    for (qint32 i = 0; i < count && --m_itemsLeft >= 0; ++i) {
        const QString key = string();
        bundle[key] = value();
    }
    return bundle;
}

bool isSameBundle(const QVariantMap &a, const QVariantMap &b)
{
    const auto isSame = [](const QVariant &left, const QVariant &right) {
        if (left.userType() != right.userType() || left.isNull() != right.isNull())
            return false;
        if (left.userType() != QMetaType::Double)
            return left == right;
        const double numbers[] = {left.toDouble(), right.toDouble()};
        return std::memcmp(&numbers[0], &numbers[1], sizeof(double)) == 0; // no number is one
    };
    return a.keys() == b.keys() && std::equal(a.begin(), a.end(), b.begin(), b.end(), isSame);
}
