// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/clienterror.h"

#include <QObject>
#include <QUrl>

class LumdService;

/// Installs apk files, one after the other, and tells how far it is.
class InstallQueue : public QObject
{
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString explanation READ explanation NOTIFY changed)
    Q_PROPERTY(QString fileName READ fileName NOTIFY changed)
    Q_PROPERTY(QString package READ package NOTIFY changed)
    Q_PROPERTY(int waiting READ waiting NOTIFY changed)

public:
    enum State {
        Idle,
        HandingOver, ///< lumd copies the file
        Waiting, ///< kept until the runtime is up
        Installing,
        Installed,
        Failed,
    };
    Q_ENUM(State)

    explicit InstallQueue(LumdService *service, QObject *parent = nullptr);

    State state() const { return m_state; }
    bool isBusy() const
    {
        return m_state == HandingOver || m_state == Waiting || m_state == Installing;
    }
    QString title() const;
    /// Why it failed or what it waits for; may be empty. Plain text.
    QString explanation() const;
    /// The file's name, fit to be shown.
    QString fileName() const;
    /// What was installed; empty before.
    QString package() const { return m_package; }
    /// Files that come after this one.
    int waiting() const { return m_files.size(); }

    /// Adds files.
    Q_INVOKABLE void install(const QList<QUrl> &files);
    /// After the result: begins with the next file, or is Idle without one.
    Q_INVOKABLE void goOn();

Q_SIGNALS:
    void changed();

private:
    void begin();
    void hand();
    void onAnswered(const Answer<bool> &answer);
    void onFinished(const QString &package, bool isSuccess, const QString &message);
    void onPresence();
    void set(State state, const QString &explanation = {});

    LumdService *m_service;
    QList<QUrl> m_files;
    QString m_path;
    QString m_package;
    QString m_explanation;
    State m_state = Idle;
    bool m_isKept = false;
    bool m_isHanded = false;
};
