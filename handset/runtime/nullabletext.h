// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonValue>
#include <QString>

/// A text as the event log and the catalogue have it: Android's null string is JSON's null.
inline QJsonValue nullableText(const QString &text)
{
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}
