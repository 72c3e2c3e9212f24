// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QTimer>

class AlienBinderConnection;

/// Warns, once for each time that the runtime's unit comes up, when a service that every runtime
/// has is not found for a minute from then on. Nothing else tells of a protocol that is not the
/// runtime's: a service manager that is spoken to wrongly just knows of nothing.
class SilentRuntime : public QObject
{
    Q_OBJECT

public:
    /// The connection to that service, which outlives this.
    explicit SilentRuntime(const AlienBinderConnection &service);

private:
    void update();
    void warn();

    const AlienBinderConnection &m_service;
    bool m_hasWarned = false;
    QTimer m_timer;
};
