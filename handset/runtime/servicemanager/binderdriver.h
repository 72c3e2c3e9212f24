// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVector>

#include <functional>

#include <linux/android/binder.h>

/// The kernel's binder device as a context manager of one thread uses it: no libgbinder
/// here, for that library can only be a client of one.
class BinderDriver
{
public:
    struct Transaction
    {
        quint32 code = 0;
        QByteArray data;
        QVector<quint64> objects; ///< offsets of the objects in data
        qint64 senderPid = 0;
    };

    struct Reply
    {
        QByteArray data;
        QVector<quint64> objects;
        bool isStatus = false; ///< data is a status word instead of a result
    };

    struct Callbacks
    {
        std::function<Reply(const Transaction &)> transact;
        std::function<void(quint32 handle)> handleDied;
        std::function<void(const QString &)> failed; ///< the driver refused something
    };

    explicit BinderDriver(Callbacks callbacks);
    ~BinderDriver();
    Q_DISABLE_COPY_MOVE(BinderDriver)

    /// Opens the device and becomes the one process behind handle 0.
    /// @return empty on success, else the reason.
    QString becomeContextManager(const char *device);
    /// Readable when dispatch() has something to do.
    int descriptor() const { return m_descriptor; }
    /// Handles what the driver has for this process, until there is no more.
    void dispatch();

    /// A reference to a handle and word of its process's death; each must be released once.
    void keepHandle(quint32 handle);
    void releaseHandle(quint32 handle);

private:
    template <typename Payload> void command(quint32 code, const Payload &payload);
    void flush();
    bool exchange(QByteArray *input);
    void handle(const QByteArray &input);
    void handleTransaction(const binder_transaction_data &transaction);

    const Callbacks m_callbacks;
    QHash<quint32, int> m_references;
    QByteArray m_commands;
    int m_descriptor = -1;
    void *m_memory = nullptr;
};
