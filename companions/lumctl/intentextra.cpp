// SPDX-License-Identifier: BSD-3-Clause
#include "intentextra.h"

namespace {

QVariant parseBoolean(const QString &text)
{
    if (text == QLatin1String("true"))
        return true;
    return text == QLatin1String("false") ? QVariant(false) : QVariant();
}

QVariant parseValue(const QString &type, const QString &text)
{
    bool isValid = true;
    QVariant value;
    if (type == QLatin1String("bool"))
        value = parseBoolean(text);
    else if (type == QLatin1String("int"))
        value = text.toInt(&isValid);
    else if (type == QLatin1String("long"))
        value = text.toLongLong(&isValid);
    else if (type == QLatin1String("double"))
        value = text.toDouble(&isValid);
    else if (type == QLatin1String("string"))
        value = text;
    return isValid ? value : QVariant();
}

} // namespace

std::optional<IntentExtra> parseExtra(const QString &text)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    const int equals = text.indexOf(QLatin1Char('='), colon + 1);
    if (colon < 0 || equals <= colon + 1)
        return {};
    const QVariant value = parseValue(text.left(colon), text.mid(equals + 1));
    if (!value.isValid())
        return {};
    return IntentExtra{text.mid(colon + 1, equals - colon - 1), value};
}
