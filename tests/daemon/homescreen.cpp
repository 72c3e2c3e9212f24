// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/homescreen.h"

#include "tests/daemon/daemonfixture.h"

#include <QDBusError>

HomeScreen::HomeScreen(const QString &busAddress, Manner manner)
    : m_bus(QDBusConnection::connectToBus(
          busAddress, QStringLiteral("homescreen-%1").arg(quintptr(this)))),
      m_manner(manner)
{
    if (!m_bus.registerObject(
            QStringLiteral("/LauncherModel"), this, QDBusConnection::ExportAllSlots)
        || !m_bus.registerService(QStringLiteral("org.teskmobile.glossbar")))
        qFatal("home screen: %s", qPrintable(m_bus.lastError().message()));
}

void HomeScreen::updatingStarted(
    const QString &name, const QString &second, const QString &third, const QString &path)
{
    record(QStringLiteral("updatingStarted(%1, %2, %3, %4)").arg(name, second, third, path));
}

void HomeScreen::updatingFinished(const QString &name)
{
    record(QStringLiteral("updatingFinished(%1)").arg(name));
}

void HomeScreen::answer()
{
    m_bus.send(m_call.value().createReply());
    m_call.reset();
}

void HomeScreen::record(const QString &text)
{
    m_calls.append(text);
    if (m_manner == Manner::Refuses) {
        sendErrorReply(QDBusError::Failed, QStringLiteral("no"));
    } else if (m_manner == Manner::Waits) {
        setDelayedReply(true);
        m_call = message();
    }
}

QString started(const QString &name, const QString &path)
{
    return QStringLiteral("updatingStarted(%1, , , %2)").arg(name, path);
}

QString finished(const QString &name)
{
    return QStringLiteral("updatingFinished(%1)").arg(name);
}

QString makeEntry(const QString &name, const QByteArray &package)
{
    const QString path =
        QStringLiteral("/usr/share/applications/") + name + QStringLiteral(".desktop");
    makeFile(path, "[Desktop Entry]\nName=a\nX-lumd-packageName=" + package + '\n');
    return path;
}
