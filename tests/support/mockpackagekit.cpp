// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/mockpackagekit.h"

#include <QDBusError>
#include <QDBusObjectPath>

namespace {

const QString ServiceName = QStringLiteral("org.freedesktop.PackageKit");
const QString ManagerPath = QStringLiteral("/org/freedesktop/PackageKit");
const QString TransactionInterface = QStringLiteral("org.freedesktop.PackageKit.Transaction");

// PkInfoEnum and PkExitEnum of PackageKit's headers.
constexpr quint32 infoInstalled = 1;
constexpr quint32 exitSuccess = 1;
constexpr quint32 exitFailed = 2;

QString textOf(const QVariant &value)
{
    if (value.type() == QVariant::StringList)
        return QLatin1Char('[') + value.toStringList().join(QLatin1String(", ")) + QLatin1Char(']');
    return value.toString();
}

} // namespace

MockPackageKit::MockPackageKit()
    : m_bus(QDBusConnection::connectToBus(
          QDBusConnection::SystemBus, QStringLiteral("mockpackagekit-%1").arg(quintptr(this))))
{
    // In this order: Qt makes a child of the object when it is registered.
    const bool hasObjects =
        m_bus.registerVirtualObject(ManagerPath, this, QDBusConnection::SingleNode)
        && m_bus.registerVirtualObject(
            QStringLiteral("/transaction"), this, QDBusConnection::SubPath);
    moveToThread(&m_thread);
    m_thread.start();
    if (!hasObjects || !m_bus.registerService(ServiceName))
        qFatal("mock PackageKit: %s", qPrintable(m_bus.lastError().message()));
}

MockPackageKit::~MockPackageKit()
{
    m_bus.unregisterService(ServiceName);
    m_bus.unregisterObject(ManagerPath);
    m_bus.unregisterObject(QStringLiteral("/transaction"), QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus(m_bus.name());
    m_thread.quit();
    m_thread.wait();
}

void MockPackageKit::setPackages(const QString &name, const QStringList &packageIds)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_packages.insert(name, packageIds);
}

void MockPackageKit::fail(const QString &method, const Error &error)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_errors.insert(method, error);
}

QStringList MockPackageKit::callTexts() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

int MockPackageKit::transactions() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_transactions;
}

QString MockPackageKit::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return {};
}

bool MockPackageKit::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    connection.send(answer(message));
    if (message.interface() == TransactionInterface
        && message.member() != QLatin1String("SetHints"))
        carryOut(message);
    return true;
}

QDBusMessage MockPackageKit::answer(const QDBusMessage &message)
{
    const QString method = message.member();
    if (method == QLatin1String("GetAll"))
        return message.createReply(QVariantMap());
    if (method == QLatin1String("CreateTransaction")) {
        const QDBusObjectPath path(QStringLiteral("/transaction/%1").arg(++m_transactions));
        return message.createReply(QVariant::fromValue(path));
    }
    if (message.interface() == TransactionInterface)
        return message.createReply();
    return message.createErrorReply(QDBusError::UnknownMethod, method);
}

void MockPackageKit::carryOut(const QDBusMessage &message)
{
    const QString method = message.member();
    QStringList arguments;
    for (const QVariant &argument : message.arguments())
        arguments.append(textOf(argument));
    m_calls.append(QStringLiteral("%1(%2)").arg(method, arguments.join(QLatin1String(", "))));

    const Error error = m_errors.value(method);
    if (error.code != 0) {
        emitSignal(message.path(), QStringLiteral("ErrorCode"), {error.code, error.details});
    } else if (method == QLatin1String("Resolve")) {
        const QStringList names = message.arguments().value(1).toStringList();
        for (const QString &name : names) {
            for (const QString &id : m_packages.value(name))
                emitSignal(message.path(), QStringLiteral("Package"),
                    {infoInstalled, id, QStringLiteral("An app")});
        }
    }
    constexpr quint32 runtime = 1;
    emitSignal(message.path(), QStringLiteral("Finished"),
        {error.code != 0 ? exitFailed : exitSuccess, runtime});
    emitSignal(message.path(), QStringLiteral("Destroy"), {});
}

void MockPackageKit::emitSignal(
    const QString &path, const QString &name, const QVariantList &arguments)
{
    QDBusMessage signal = QDBusMessage::createSignal(path, TransactionInterface, name);
    signal.setArguments(arguments);
    m_bus.send(signal);
}
