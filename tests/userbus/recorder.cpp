// SPDX-License-Identifier: BSD-3-Clause
#include "tests/userbus/recorder.h"

#include "userbus/busstrings.h"

#include <QDBusError>

Recorder::Recorder(Manner manner)
    : m_bus(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
          QStringLiteral("recorder-%1").arg(quintptr(this)))),
      m_manner(manner)
{
    if (!m_bus.registerObject(QStringLiteral("/"), this, QDBusConnection::ExportAllSlots)
        || !m_bus.registerService(QStringLiteral("test.recorder")))
        qFatal("recorder: %s", qPrintable(m_bus.lastError().message()));
}

Recorder::~Recorder()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
}

void Recorder::answer()
{
    m_bus.send(m_call.value().createReply());
    m_call.reset();
}

UserBusCall Recorder::note(const QString &text)
{
    return {"test.recorder", "/", "test.Recorder", "Note",
        [text](sd_bus_message *message) { return appendString(message, text); }};
}

void Recorder::Note(const QString &text)
{
    m_texts.append(text);
    m_callers.insert(message().service());
    if (m_manner == Manner::Refuses) {
        sendErrorReply(QDBusError::Failed, QStringLiteral("no"));
    } else if (m_manner == Manner::Waits) {
        setDelayedReply(true);
        m_call = message();
    }
}
