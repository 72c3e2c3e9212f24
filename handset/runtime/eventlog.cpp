// SPDX-License-Identifier: BSD-3-Clause
#include "eventlog.h"

#include <QJsonDocument>

#include <cstdio>

namespace {

constexpr int MaximumEvents = 10000;

} // namespace

void EventLog::record(QJsonObject event)
{
    event.insert(QStringLiteral("seq"), ++m_lastNumber);
    const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fflush(stdout);

    if (event.contains(QStringLiteral("error")))
        ++m_errorCount;
    m_events.append(event);
    if (m_events.size() > MaximumEvents)
        m_events.removeFirst();
    Q_EMIT recorded(event);
}
