// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QVariant>

#include <optional>

/// One of the values that go with an intent.
struct IntentExtra
{
    QString key;
    QVariant value;
};

/// Reads TYPE:KEY=VALUE, where TYPE is bool (true, false), int (32 bits), long (64 bits), double or
/// string; nothing for all else, numbers out of range included.
std::optional<IntentExtra> parseExtra(const QString &text);
