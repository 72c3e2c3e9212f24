// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/monitor.h"

#include "daemon/monitoradaptor.h"
#include "launcher/desktopmanager.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>

#include <algorithm>

namespace {

constexpr char interfaceName[] = "com.tovra.lumd.Monitor1";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";

constexpr int longestText = 8192;
// A system bus cuts off who sends it a message of more than 32 MB.
constexpr int longestList = 16 * 1024 * 1024;
// Removals of packages that the runtime does not have are awaited in vain.
constexpr int mostAwaitedRemovals = 256;

bool isFit(uint point)
{
    const bool isSurrogate = point >= 0xd800 && point < 0xe000;
    const bool isNoncharacter = (point >= 0xfdd0 && point < 0xfdf0) || (point & 0xfffeU) == 0xfffeU;
    return point != 0 && !isSurrogate && !isNoncharacter;
}

// NUL would end the text, half of a surrogate pair is no UTF-8, and some libraries drop a message,
// or the whole connection, for one of Unicode's noncharacters.
QString fitForBus(const QString &text)
{
    QVector<uint> points = text.leftRef(longestText).toUcs4();
    std::replace_if(
        points.begin(), points.end(), [](uint point) { return !isFit(point); },
        uint(QChar::ReplacementCharacter));
    return QString::fromUcs4(points.constData(), points.size());
}

void send(const char *interface, const char *name, const QVariantList &arguments)
{
    QDBusMessage signal = QDBusMessage::createSignal(
        QLatin1String(Monitor::objectPath), QLatin1String(interface), QLatin1String(name));
    signal.setArguments(arguments);
    QDBusConnection::systemBus().send(signal);
}

void tell(const char *name, const QVariantList &arguments)
{
    send(interfaceName, name, arguments);
}

ListedLauncher listed(const InstalledLauncher &launcher)
{
    return {fitForBus(launcher.desktopPath), fitForBus(launcher.name), fitForBus(launcher.icon),
        fitForBus(launcher.version), launcher.isHidden};
}

int sizeOnBus(const ListedLauncher &launcher)
{
    constexpr int most = 4; // bytes of UTF-8 for a character
    constexpr int frame = 64; // lengths, paddings, ends
    return (launcher.desktopFile.size() + launcher.name.size() + launcher.icon.size()
               + launcher.version.size())
        * most
        + frame;
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const ListedLauncher &launcher)
{
    argument.beginStructure();
    argument << launcher.desktopFile << launcher.name << launcher.icon << launcher.version
             << launcher.hidden;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ListedLauncher &launcher)
{
    argument.beginStructure();
    argument >> launcher.desktopFile >> launcher.name >> launcher.icon >> launcher.version
        >> launcher.hidden;
    argument.endStructure();
    return argument;
}

Monitor::Monitor(const DesktopManager &desktopManager) : m_desktopManager(desktopManager)
{
    qDBusRegisterMetaType<ListedLauncher>();
    qDBusRegisterMetaType<QVector<ListedLauncher>>();
    qDBusRegisterMetaType<ListedApps>();
    new MonitorAdaptor(this);
}

void Monitor::setState(const State &state)
{
    QVariantMap changed;
    const auto note = [&changed](const char *name, const auto &before, const auto &now) {
        if (before != now)
            changed.insert(QLatin1String(name), now);
    };
    note("RuntimeState", m_state.runtimeState, state.runtimeState);
    note("Ready", m_state.isReady, state.isReady);
    note("PendingChanges", m_state.pendingChanges, state.pendingChanges);
    note("PendingLaunches", m_state.pendingLaunches, state.pendingLaunches);
    note("SdkLevel", m_state.sdkLevel, state.sdkLevel);
    m_state = state;
    if (m_hasState && !changed.isEmpty())
        send(propertiesInterface, "PropertiesChanged",
            {QString(QLatin1String(interfaceName)), changed, QStringList()});
    m_hasState = true;
}

QString Monitor::version()
{
    return QStringLiteral(LUMD_VERSION);
}

ListedApps Monitor::listApps() const
{
    ListedApps apps;
    int size = 0;
    const auto details = m_desktopManager.launcherDetails();
    for (auto package = details.constBegin(); package != details.constEnd(); ++package) {
        QVector<ListedLauncher> &launchers = apps[fitForBus(package.key())];
        for (const InstalledLauncher &launcher : *package) {
            launchers.append(listed(launcher));
            size += sizeOnBus(launchers.last());
        }
        if (size > longestList) {
            sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("Too many launchers"));
            return {};
        }
    }
    return apps;
}

void Monitor::awaitRemoval(const QString &package)
{
    m_awaitedRemovals.removeOne(package);
    if (m_awaitedRemovals.size() == mostAwaitedRemovals)
        m_awaitedRemovals.removeFirst();
    m_awaitedRemovals.append(package);
}

void Monitor::forgetRemovals()
{
    m_awaitedRemovals.clear();
}

void Monitor::tellInstallFinished(const QString &package, bool success, const QString &message)
{
    tell(
        "InstallFinished", {fitForBus(package), success, success ? QString() : fitForBus(message)});
}

void Monitor::tellRemoveFinished(const QString &package, bool success)
{
    m_awaitedRemovals.removeOne(package);
    tell("RemoveFinished", {fitForBus(package), success});
}

void Monitor::tellQueued(const QString &kind, const QString &what)
{
    tell("RequestQueued", {kind, fitForBus(what)});
}

void Monitor::tellLauncherChanged(
    const QString &desktopPath, const QString &package, const QString &name, const QString &icon)
{
    tell("LauncherChanged",
        {fitForBus(desktopPath), fitForBus(package), fitForBus(name), fitForBus(icon)});
}

void Monitor::tellLauncherGone(const QString &desktopPath, const QString &package)
{
    tell("LauncherGone", {fitForBus(desktopPath), fitForBus(package)});
}

void Monitor::tellPackageRemoved(const QString &package)
{
    tell("PackageRemoved", {fitForBus(package)});
    if (m_awaitedRemovals.contains(package))
        tellRemoveFinished(package, true);
}

void Monitor::tellListComplete()
{
    tell("ListComplete", {});
}
