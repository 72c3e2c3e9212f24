// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QFile>

/// The unit as it is installed. Whether systemd does as it says shows on the handset.
class TestUnitFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLineIsThere();
};

void TestUnitFile::everyLineIsThere()
{
    QFile file(QStringLiteral(UNIT_FILE));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList lines =
        QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines = lines.filter(QRegularExpression(QStringLiteral("^[^#]")));
    QCOMPARE(lines,
        texts({"[Unit]", "Description=Android apps in the native session", "DefaultDependencies=no",
            "Requires=sysinit.target dbus.socket", "Wants=systemd-logind.service",
            "After=sysinit.target basic.target dbus.socket systemd-logind.service",
            "Conflicts=shutdown.target", "Before=shutdown.target", "StartLimitIntervalSec=0",
            "[Service]", "Type=dbus", "BusName=com.tovra.lumd",
            "EnvironmentFile=-/etc/lumd/environment", "ExecStart=" PROGRAM,
            "TimeoutStartSec=infinity",
            "Environment=\"QT_MESSAGE_PATTERN=<%%{if-debug}7%%{endif}%%{if-info}6%%{endif}"
            "%%{if-warning}4%%{endif}%%{if-critical}3%%{endif}%%{if-fatal}2%%{endif}>"
            "%%{message}\"",
            "Restart=always", "RestartSec=1", "RestartPreventExitStatus=2", "MemoryMax=256M",
            "NoNewPrivileges=yes",
            "CapabilityBoundingSet=CAP_CHOWN CAP_FOWNER CAP_FSETID CAP_DAC_OVERRIDE "
            "CAP_DAC_READ_SEARCH",
            "CapabilityBoundingSet=CAP_SETUID CAP_SETGID", "ProtectSystem=strict",
            "ReadOnlyPaths=-/root /run -/run/user", "ReadWritePaths=/home",
            "ReadWritePaths=-/usr/share/applications -/usr/share/tovra-settings/entries",
            "ReadWritePaths=-/usr/share/lumd/partnerspace", "StateDirectory=lumd",
            "PrivateMounts=yes", "PrivateNetwork=yes", "IPAddressDeny=any",
            "RestrictAddressFamilies=AF_UNIX", "DevicePolicy=closed", "DeviceAllow=char-misc rw",
            "DeviceAllow=char-binder rw", "SystemCallArchitectures=native",
            "SystemCallFilter=@system-service", "SystemCallFilter=~@resources",
            "SystemCallErrorNumber=EPERM", "MemoryDenyWriteExecute=yes", "LockPersonality=yes",
            "KeyringMode=private", "ProtectClock=yes", "ProtectControlGroups=yes",
            "ProtectHostname=yes", "ProtectKernelLogs=yes", "ProtectKernelModules=yes",
            "ProtectKernelTunables=yes", "RestrictNamespaces=yes", "RestrictRealtime=yes",
            "RestrictSUIDSGID=yes", "[Install]", "WantedBy=multi-user.target"}));
}

LUM_TEST_MAIN(TestUnitFile)
#include "tst_unitfile.moc"
