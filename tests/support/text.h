// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QStringList>

#include <initializer_list>

/// The lines of a ledger or a log as a test writes them down.
inline QStringList texts(std::initializer_list<const char *> lines)
{
    QStringList list;
    for (const char *line : lines)
        list.append(QString::fromUtf8(line));
    return list;
}
