// SPDX-License-Identifier: BSD-3-Clause
#include "runtimeconfig.h"

#include <QFile>
#include <QSettings>

namespace {

int sdkLevel()
{
    QFile properties(QStringLiteral("/opt/alien/build.prop"));
    if (!properties.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray key = QByteArrayLiteral("ro.build.version.sdk=");
    const QList<QByteArray> lines = properties.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().toInt();
    }
    return 0;
}

} // namespace

RuntimeConfig RuntimeConfig::load()
{
    const QSettings file(QStringLiteral("/etc/alien-runtime.conf"), QSettings::IniFormat);
    const auto number = [&file](const char *key, int fallback) {
        return file.value(QStringLiteral("runtime/") + QLatin1String(key), fallback).toInt();
    };
    RuntimeConfig config;
    config.sdk = sdkLevel();
    config.readyDelay = number("readyDelay", config.readyDelay);
    config.stopDelay = number("stopDelay", config.stopDelay);
    config.announceDelay = number("announceDelay", config.announceDelay);
    config.announceBackwards = file.value(QStringLiteral("runtime/announceOrder")).toString()
        == QLatin1String("backwards");
    config.announceOneway = file.value(QStringLiteral("runtime/announceOneway")).toBool();
    config.installAnswer = number("installAnswer", config.installAnswer);
    config.installDelay = number("installDelay", config.installDelay);
    config.clearDelay = number("clearDelay", config.clearDelay);
    config.windowPolls = number("windowPolls", config.windowPolls);
    return config;
}
