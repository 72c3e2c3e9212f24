// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/daemonfixture.h"

#include "tests/support/testnamespace.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

DaemonFixture::DaemonFixture()
{
    TestNamespace::setActiveSession(1000);
    renew();
}

bool DaemonFixture::start()
{
    daemon->start();
    if (daemon->waitForBusName())
        return settle();
    if (daemon->isRunning())
        qWarning("lumd runs, and does not own its name");
    else
        qWarning("lumd has ended with %d", daemon->exitCode());
    return false;
}

bool DaemonFixture::settle()
{
    // Answered by the main thread; a Ping would be answered by the D-Bus library's own.
    const QDBusMessage question = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("org.freedesktop.DBus.Introspectable"),
        QStringLiteral("Introspect"));
    const QString error = errorOf(QDBusConnection::systemBus().call(question));
    if (!error.isEmpty())
        qWarning("lumd does not answer: %s", qPrintable(error));
    return error.isEmpty();
}

void DaemonFixture::renew()
{
    daemon.reset();
    android.reset();
    if (!QTest::qWaitFor([] { return !isOnBus(QStringLiteral("com.tovra.lumd")); }, 10000))
        qFatal("the bus keeps the name of a daemon that is gone");
    android.emplace();
    daemon.emplace();
    daemon->setBinderSocket(android->socketPath());
}

QDBusMessage DaemonFixture::call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"), method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message);
}

QString errorOf(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ReplyMessage)
        return {};
    return reply.errorName() + QStringLiteral(": ") + reply.errorMessage();
}

bool isOnBus(const QString &name)
{
    return QDBusConnection::systemBus().interface()->isServiceRegistered(name);
}

QByteArray fileContents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void makeFile(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly)
        || file.write(contents) != contents.size())
        qFatal("cannot make %s", qPrintable(path));
}
