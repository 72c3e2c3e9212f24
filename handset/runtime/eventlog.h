// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QVector>

/// What happened to the runtime and what it did, in order. Each event is one JSON line on
/// standard output as well. An event with the key "error" is something that must not be.
class EventLog : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Adds the event's number as "seq".
    void record(QJsonObject event);
    /// The events kept, oldest first; at most the last 10000.
    const QVector<QJsonObject> &events() const { return m_events; }
    /// Number of events with an error since the start.
    int errorCount() const { return m_errorCount; }
    /// Forgets the events; the count of errors and the numbering stay.
    void clear() { m_events.clear(); }

Q_SIGNALS:
    void recorded(const QJsonObject &event);

private:
    QVector<QJsonObject> m_events;
    qint64 m_lastNumber = 0;
    int m_errorCount = 0;
};
