// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/privatebus.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const char *Configuration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
  </policy>
  <include ignore_missing="yes">%2</include>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus(Kind kind, unsigned int uid)
{
    const QString path = kind == Kind::System
        ? QStringLiteral("/run/dbus/system_bus_socket")
        : QStringLiteral("/run/user/%1/dbus/user_bus_socket").arg(uid);
    m_address = QLatin1String("unix:path=") + path;
    QDir().mkpath(QFileInfo(path).path());
    const QString configurationPath = path + QLatin1String(".conf");
    QFile configuration(configurationPath);
    if (!configuration.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(configurationPath));
    configuration.write(QString::fromLatin1(Configuration)
            .arg(m_address, path + QLatin1String(".policy"))
            .toUtf8());
    configuration.close();
    m_daemon.start(QStringLiteral("/usr/bin/dbus-daemon"),
        {QStringLiteral("--config-file=") + configurationPath, QStringLiteral("--nofork"),
            QStringLiteral("--nopidfile"), QStringLiteral("--nosyslog"),
            QStringLiteral("--print-address=1")},
        {}, ChildProcess::Collect::Both);
    // Printed once the socket listens.
    if (!m_daemon.waitForLineThatBegins(m_address))
        qFatal("no dbus-daemon at %s: %s", qPrintable(path),
            qPrintable(m_daemon.lines().join(QLatin1Char(' '))));
}

PrivateBus::~PrivateBus() = default;

void PrivateBus::stop()
{
    m_daemon.kill();
}
