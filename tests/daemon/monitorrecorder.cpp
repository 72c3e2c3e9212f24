// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/monitorrecorder.h"

#include "tests/daemon/daemonfixture.h"

#include <QDBusArgument>
#include <QDBusConnection>

namespace {

const QString path = QStringLiteral("/com/tovra/lumd/monitor");
const QString monitorInterface = QStringLiteral("com.tovra.lumd.Monitor1");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

QString textOf(const QVariant &value)
{
    return value.type() == QVariant::String ? QLatin1Char('"') + value.toString() + QLatin1Char('"')
                                            : value.toString();
}

QStringList textsOf(const QVariantMap &map)
{
    QStringList texts;
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
        texts.append(entry.key() + QLatin1Char('=') + textOf(*entry));
    return texts;
}

QString launcherText(const QDBusArgument &launchers)
{
    QString desktopFile;
    QString name;
    QString icon;
    QString version;
    bool isHidden = false;
    launchers.beginStructure();
    launchers >> desktopFile >> name >> icon >> version >> isHidden;
    launchers.endStructure();
    const QString hidden = isHidden ? QStringLiteral("true") : QStringLiteral("false");
    return QStringList({desktopFile, name, icon, version, hidden}).join(QLatin1Char('|'));
}

} // namespace

MonitorRecorder::MonitorRecorder()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    for (const QString &interface : {monitorInterface, propertiesInterface})
        bus.connect(QString(), path, interface, QString(), this, SLOT(onSignal(QDBusMessage)));
}

MonitorRecorder::~MonitorRecorder()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    for (const QString &interface : {monitorInterface, propertiesInterface})
        bus.disconnect(QString(), path, interface, QString(), this, SLOT(onSignal(QDBusMessage)));
}

void MonitorRecorder::onSignal(const QDBusMessage &message)
{
    QStringList texts;
    const QVariantList arguments = message.arguments();
    if (message.interface() == propertiesInterface) {
        if (message.signature() == QLatin1String("sa{sv}as")
            && arguments.first() == monitorInterface && arguments.last().toStringList().isEmpty())
            texts = textsOf(qdbus_cast<QVariantMap>(arguments.at(1)));
        m_texts.append(
            message.member() + QLatin1Char('(') + texts.join(QLatin1Char(' ')) + QLatin1Char(')'));
        return;
    }
    for (const QVariant &argument : arguments)
        texts.append(textOf(argument));
    m_texts.append(
        message.member() + QLatin1Char('(') + texts.join(QLatin1String(", ")) + QLatin1Char(')'));
}

QDBusMessage MonitorRecorder::call(
    const char *interface, const char *method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"), path,
        QString::fromLatin1(interface), QString::fromLatin1(method));
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message);
}

QVariantMap MonitorRecorder::properties()
{
    return qdbus_cast<QVariantMap>(
        call("org.freedesktop.DBus.Properties", "GetAll", {monitorInterface}).arguments().value(0));
}

QStringList MonitorRecorder::listApps()
{
    const QDBusMessage reply = call("com.tovra.lumd.Monitor1", "ListApps");
    if (reply.signature() != QLatin1String("a{sa(ssssb)}"))
        return {errorOf(reply)};
    QStringList lines;
    const auto apps = reply.arguments().first().value<QDBusArgument>();
    for (apps.beginMap(); !apps.atEnd(); apps.endMapEntry()) {
        QString package;
        apps.beginMapEntry();
        apps >> package;
        apps.beginArray();
        while (!apps.atEnd())
            lines.append(package + QLatin1String(": ") + launcherText(apps));
        apps.endArray();
    }
    apps.endMap();
    return lines;
}
