# SPDX-License-Identifier: BSD-3-Clause
"""What lumd's unit keeps from it, and what it must leave."""

import shlex

import apps
import device
from appscenario import AppScenario

INVOKER = "/usr/bin/invoker"
OFFERED = "/home/handset/offered"
INVOKER_TEXT = f"""#!/bin/sh
echo "$(id -un) $(id -gn) $(id -Gn | grep -c root) $*" > {OFFERED}
"""
REPOSITORIES = "/etc/lumd/platform/vsu.conf"
IMAGE = "/opt/alien/system.img"

# CHOWN, DAC_OVERRIDE, DAC_READ_SEARCH, FOWNER, FSETID, SETGID, SETUID
CAPABILITIES = "00000000000000df"
WRITTEN = ("/home", apps.APPLICATIONS, apps.SETTINGS, apps.ICONS, device.MARKERS)
UNWRITTEN = ("/", "/etc", "/etc/lumd", "/opt/alien", "/root", "/run", "/run/user/1000", "/tmp",
             "/usr/bin", "/usr/share", "/usr/share/tovra-settings", "/var/lib", "/var/tmp")


class Sandbox(AppScenario):
    def shell(self, script, **options):
        return self.device.machine.shell(script, **options)

    def in_sandbox(self, script):
        """Runs a script with lumd's view of the file system; gives what it printed."""
        return self.shell(f"nsenter --mount --target {self.device.owner()} "
                          f"sh -c {shlex.quote(script)}").stdout

    def test_lumdHasTheRightsThatItNeedsAndNoNetwork(self):
        lumd = self.device.owner()
        status = self.shell(f"cat /proc/{lumd}/status").stdout
        lines = dict(line.split(":\t", 1) for line in status.splitlines())
        self.assertEqual([lines[key] for key in ("CapBnd", "CapEff", "NoNewPrivs", "Seccomp")],
                         [CAPABILITIES, CAPABILITIES, "1", "2"])
        own, first = self.shell(f"readlink /proc/{lumd}/ns/net /proc/1/ns/net").stdout.split()
        self.assertNotEqual(own, first)

    def test_onlyTheFoldersThatLumdWritesAreWritable(self):
        found = self.in_sandbox(f"""
            for folder in {' '.join(WRITTEN + UNWRITTEN)}; do
                if touch "$folder/.sandbox" 2> /dev/null; then
                    echo "$folder"
                    rm "$folder/.sandbox"
                fi
            done""")
        self.assertEqual(found.split(), list(WRITTEN))

    def test_aHomeThatIsMountedWhileLumdRunsIsWritten(self):
        self.device.start_runtime()
        path = "/run/later.apk"
        self.device.write({path: apps.MAPS.apk()})
        self.addCleanup(self.shell, f"umount --lazy /home; rm -f {path}", check=False)
        self.shell(f"mount -t tmpfs home /home && mkdir -p {device.INCOMING}")
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.wait_installed(apps.MAPS)
        self.assertEqual(self.shell(f"ls {device.INCOMING}").stdout, "later.apk\n")
        self.assert_files(apps.MAPS.files())

    def test_theOfferOfTheRuntimeRunsAsTheUserOfTheSeat(self):
        self.device.write({INVOKER: INVOKER_TEXT, REPOSITORIES: "[vsu]\nrepos=aliendalvik\n"})
        self.addCleanup(self.shell, f"rm -f {INVOKER} {REPOSITORIES} {OFFERED}; touch {IMAGE}")
        self.shell(f"chmod 755 {INVOKER}; rm {IMAGE}")
        path = self.put_apk(apps.MAPS)
        self.assertEqual(self.bus("installFile", "s", path), "b false")
        self.expected_warnings = ["ACL is not installed, offering installation"]
        self.device.wait(lambda: self.shell(f"cat {OFFERED}", check=False).stdout, "the offer")
        self.assertEqual(self.shell(f"cat {OFFERED}").stdout,
                         "handset handset 0 --type=sorbel-qt5 --no-wait "
                         "/usr/bin/store-client showApp aliendalvik\n")
