// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class AlienBinderTransaction;

/// Waits until the runtime shows a window of a package, one wait after the other. SurfaceFlinger
/// is asked at most ten times, with half a second after each answer but yes; a wait ends after
/// 5000 ms whatever SurfaceFlinger does. The event loop turns meanwhile.
///
/// A call that SurfaceFlinger does not answer cannot be taken back and keeps one of the threads
/// that libgbinder has for the whole process. So nothing is asked while four calls of earlier
/// waits are unanswered; a wait then passes its time.
class WindowWait : public QObject
{
    Q_OBJECT

public:
    WindowWait();
    ~WindowWait() override;

    /// Begins a wait, on a connection of its own. Not before the one that went before it has
    /// finished.
    void start(const QString &package);

    /// Whether an answer is still due, in this wait or to an earlier one.
    bool hasUnansweredCall() const;

Q_SIGNALS:
    /// The wait is over, window or not. Never emitted from within start().
    void finished();

private:
    void ask();
    void onAnswer(qint32 status);
    void onPauseOver();
    void end();
    void letGo();

    QString m_package;
    int m_attempts = 0;
    QTimer m_pause;
    QTimer m_deadline;
    std::shared_ptr<void> m_unanswered; // has one more owner for each call that is not answered
    std::unique_ptr<AlienBinderConnection> m_surfaceFlinger; // only in a wait
    AlienBinderTransaction *m_question = nullptr; // the latest, a child of the connection
};
