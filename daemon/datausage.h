// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <vector>

class QProcess;

/// Counts the bytes in a folder, by du, while the event loop goes on. At most one du runs.
class DataUsage : public QObject
{
    Q_OBJECT

public:
    /// Gets bytes, or 0 when they could not be told, of which a warning is logged then.
    using Answer = std::function<void(quint64 bytes)>;

    explicit DataUsage(QObject *parent = nullptr);

    /// Counts and answers, after 30 seconds at most; du is ended then. Who asks while an answer
    /// is on its way gets that one. The answer may come before this returns.
    void ask(const QString &folder, const Answer &answer);

private:
    void start();
    void onOver();
    void onDeadline();
    void answerAll(QProcess *du);

    QString m_folder;
    std::vector<Answer> m_answers;
    QTimer m_deadline;
    QProcess *m_du = nullptr; // a child, until it is over
    // It has been ended, but is not over yet: in the kernel that can take its time.
    bool m_isEnded = false;
};
