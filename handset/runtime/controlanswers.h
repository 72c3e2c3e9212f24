// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QString>

/// The form of what a control command is answered.
namespace ControlAnswers {

inline QJsonObject done(QJsonObject answer = {})
{
    answer.insert(QStringLiteral("ok"), true);
    return answer;
}

inline QJsonObject refused(const QString &reason)
{
    return {{QStringLiteral("ok"), false}, {QStringLiteral("error"), reason}};
}

} // namespace ControlAnswers
