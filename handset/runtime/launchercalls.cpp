// SPDX-License-Identifier: BSD-3-Clause
#include "launchercalls.h"

namespace {

enum Code : quint32 { Added = 1, Complete = 2, Removed = 3 };

void writeString(GBinderWriter *writer, const QString &text)
{
    static_assert(sizeof(gunichar2) == sizeof(ushort));
    gbinder_writer_append_string16_utf16(
        writer, text.isNull() ? nullptr : text.utf16(), text.size());
}

QJsonValue describe(const QString &text)
{
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}

} // namespace

QString LauncherCalls::interface()
{
    return QStringLiteral("alien.applications.IAlienNativeLauncherService");
}

LauncherCall LauncherCalls::added(
    const AndroidApp &app, const AndroidApp::Launcher &launcher, bool oneway)
{
    const auto write = [app, launcher](GBinderWriter *writer) {
        writeString(writer, app.package);
        writeString(writer, launcher.className);
        writeString(writer, launcher.caption);
        writeString(writer, app.version);
        gbinder_writer_append_byte_array(writer,
            launcher.icon.isNull() ? nullptr : launcher.icon.constData(), launcher.icon.size());
    };
    return {Added, interface().toLatin1(), write, oneway, true,
        {{QStringLiteral("method"), QStringLiteral("added")},
            {QStringLiteral("package"), describe(app.package)},
            {QStringLiteral("class"), describe(launcher.className)},
            {QStringLiteral("caption"), describe(launcher.caption)},
            {QStringLiteral("version"), describe(app.version)},
            {QStringLiteral("iconBytes"), launcher.icon.isNull() ? -1 : launcher.icon.size()}}};
}

LauncherCall LauncherCalls::complete(bool oneway)
{
    return {Complete, interface().toLatin1(), {}, oneway, true,
        {{QStringLiteral("method"), QStringLiteral("complete")}}};
}

LauncherCall LauncherCalls::removed(const QString &package, bool oneway)
{
    const auto write = [package](GBinderWriter *writer) { writeString(writer, package); };
    return {Removed, interface().toLatin1(), write, oneway, true,
        {{QStringLiteral("method"), QStringLiteral("removed")},
            {QStringLiteral("package"), describe(package)}}};
}

LauncherCall LauncherCalls::raw(
    quint32 code, const QByteArray &interface, const QByteArray &data, bool oneway)
{
    const auto write = [data](GBinderWriter *writer) {
        gbinder_writer_append_bytes(writer, data.constData(), gsize(data.size()));
    };
    return {code, interface, write, oneway, false,
        {{QStringLiteral("method"), QStringLiteral("raw")},
            {QStringLiteral("interface"), QString::fromLatin1(interface)},
            {QStringLiteral("data"), QString::fromLatin1(data.toHex())}}};
}
