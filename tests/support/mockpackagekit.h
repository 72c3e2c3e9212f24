// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMap>
#include <QStringList>
#include <QThread>

#include <mutex>

/// org.freedesktop.PackageKit on the private system bus, with the two transactions "Resolve"
/// and "RemovePackages". It answers in a thread of its own; all operations may be called from
/// any thread.
class MockPackageKit : public QDBusVirtualObject
{
public:
    /// An error's number, of PkErrorEnum, and its details.
    struct Error
    {
        quint32 code = 0;
        QString details;
    };

    MockPackageKit();
    ~MockPackageKit() override;
    Q_DISABLE_COPY(MockPackageKit)

    /// What resolving a name gives: ids as "name;version;arch;data".
    void setPackages(const QString &name, const QStringList &packageIds);
    /// Makes that method of a transaction ("Resolve") end in an error; code 0 ends that.
    void fail(const QString &method, const Error &error);

    /// The calls of transactions' methods so far, but for SetHints:
    /// "Resolve(4, [name])", "RemovePackages(2, [id], false, false)".
    QStringList callTexts() const;
    /// How many transactions were asked for.
    int transactions() const;

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusMessage answer(const QDBusMessage &message);
    void carryOut(const QDBusMessage &message);
    void emitSignal(const QString &path, const QString &name, const QVariantList &arguments);

    mutable std::mutex m_mutex;
    QDBusConnection m_bus;
    QMap<QString, QStringList> m_packages;
    QMap<QString, Error> m_errors;
    QStringList m_calls;
    int m_transactions = 0;
    QThread m_thread;
};
