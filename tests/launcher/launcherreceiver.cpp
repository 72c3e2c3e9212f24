// SPDX-License-Identifier: BSD-3-Clause
#include "tests/launcher/launcherreceiver.h"

#include "tests/support/fakegbinder/parcelwriter.h"

ActiveRuntime::ActiveRuntime() : m_bus(PrivateBus::Kind::System)
{
    m_systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
}

LauncherReceiver::LauncherReceiver()
{
    QObject::connect(&manager, &ApkManager::addLauncher, &manager,
        [this](const ApkLauncher &launcher) { added.append(launcher); });
    QObject::connect(&manager, &ApkManager::packageRemoved, &manager,
        [this](const QString &package) { removed.append(package); });
    QObject::connect(&manager, &ApkManager::launchersComplete, &manager, [this] { ++completed; });
}

QString LauncherReceiver::interfaceName()
{
    return QStringLiteral("alien.applications.IAlienNativeLauncherService");
}

QByteArray LauncherReceiver::announcement(const ApkLauncher &launcher)
{
    return FakeBinder::ParcelWriter()
        .string16(launcher.packageName)
        .string16(launcher.className)
        .string16(launcher.caption)
        .string16(launcher.packageVersion)
        .byteArray(launcher.icon)
        .bytes();
}

QStringList LauncherReceiver::lines(const LogCapture &log)
{
    return log.lines(QStringLiteral("com.tovra.lumd.launcher"));
}

FakeBinder::Answer LauncherReceiver::call(
    quint32 code, const QByteArray &payload, const QString &interface, quint32 flags) const
{
    FakeBinder::Call call;
    call.code = code;
    call.interface = interface;
    call.payload = payload;
    call.flags = flags;
    call.initialStatus = 77;
    return FakeBinder::transact(QStringLiteral("alien.launcher"), call);
}
