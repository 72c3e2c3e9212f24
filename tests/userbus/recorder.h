// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "userbus/userbus.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <optional>

/// A program on the user's bus. It writes down what it is called with, and answers as told.
class Recorder : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "test.Recorder")

public:
    enum class Manner { Answers, Refuses, Waits };

    explicit Recorder(Manner manner = Manner::Answers);
    ~Recorder() override;

    QStringList texts() const { return m_texts; }
    /// The bus's names of those who have called.
    QSet<QString> callers() const { return m_callers; }
    /// Answers the call that waits.
    void answer();

    /// A call of this program.
    static UserBusCall note(const QString &text);

public Q_SLOTS:
    void Note(const QString &text);

private:
    QDBusConnection m_bus;
    Manner m_manner;
    QStringList m_texts;
    QSet<QString> m_callers;
    std::optional<QDBusMessage> m_call;
};
