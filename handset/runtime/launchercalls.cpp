// SPDX-License-Identifier: BSD-3-Clause
#include "launchercalls.h"

#include "androidparcelwriter.h"
#include "nullabletext.h"

namespace {

enum Code : quint32 { Added = 1, Complete = 2, Removed = 3 };

} // namespace

QString LauncherCalls::interface()
{
    return QStringLiteral("alien.applications.IAlienNativeLauncherService");
}

LauncherCall LauncherCalls::added(
    const AndroidApp &app, const AndroidApp::Launcher &launcher, bool oneway)
{
    AndroidParcelWriter arguments;
    arguments.writeString16(app.package);
    arguments.writeString16(launcher.className);
    arguments.writeString16(launcher.caption);
    arguments.writeString16(app.version);
    arguments.writeByteArray(launcher.icon);
    return {Added, interface(), arguments.bytes(), oneway, true,
        {{QStringLiteral("method"), QStringLiteral("added")},
            {QStringLiteral("package"), nullableText(app.package)},
            {QStringLiteral("class"), nullableText(launcher.className)},
            {QStringLiteral("caption"), nullableText(launcher.caption)},
            {QStringLiteral("version"), nullableText(app.version)},
            {QStringLiteral("iconBytes"), launcher.icon.isNull() ? -1 : launcher.icon.size()}}};
}

LauncherCall LauncherCalls::complete(bool oneway)
{
    return {Complete, interface(), {}, oneway, true,
        {{QStringLiteral("method"), QStringLiteral("complete")}}};
}

LauncherCall LauncherCalls::removed(const QString &package, bool oneway)
{
    AndroidParcelWriter arguments;
    arguments.writeString16(package);
    return {Removed, interface(), arguments.bytes(), oneway, true,
        {{QStringLiteral("method"), QStringLiteral("removed")},
            {QStringLiteral("package"), nullableText(package)}}};
}

LauncherCall LauncherCalls::raw(
    quint32 code, const QString &interface, const QByteArray &data, bool oneway)
{
    return {code, interface, data, oneway, false,
        {{QStringLiteral("method"), QStringLiteral("raw")},
            {QStringLiteral("interface"), interface},
            {QStringLiteral("data"), QString::fromLatin1(data.toHex())}}};
}
