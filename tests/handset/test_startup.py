# SPDX-License-Identifier: BSD-3-Clause
"""How lumd starts on a real system, and what it shows on the bus."""

import xml.etree.ElementTree

import apps
import device
from scenario import Scenario

# Each member of the bus interface, in order: kind, name, arguments in, arguments out.
MEMBERS = [
    ("method", "installFile", "s", "b"),
    ("method", "installPreloadFile", "s", "b"),
    ("method", "installPartnerSpaceFile", "s", "b"),
    ("method", "removeFile", "s", "b"),
    ("method", "getAndroidAppDataUsage", "", "t"),
    ("method", "controlService", "b", ""),
    ("method", "controlServiceAutostart", "b", ""),
    ("method", "isRunning", "", "b"),
    ("method", "notifyRuntimeUpgrade", "b", ""),
    ("method", "getAppStartOnBootup", "s", "b"),
    ("method", "setAppStartOnBootup", "sb", ""),
    ("method", "deleteAppCacheFiles", "s", ""),
    ("method", "clearAppUserData", "s", ""),
    ("method", "forceStopApp", "s", ""),
    ("method", "getAppSize", "s", "(xxx)"),
    ("method", "openAppSettings", "s", ""),
    ("method", "viewLicenses", "", ""),
    ("method", "launchApp", "s", ""),
    ("method", "launchIntent", "ssssss{sv}", ""),
    ("signal", "installPackage", "", "s"),
    ("signal", "uninstallPackage", "", "s"),
    ("signal", "installPackageFromRPM", "", "s"),
    ("signal", "uninstallPackageFromRPM", "", "s"),
    ("signal", "appStartOnBootupChanged", "", "sb"),
]

# Whoever is on the seat instead of the handset's user, and how he gets there.
SECOND = 1001
FIRST_LOGIN = "/etc/systemd/system/getty@tty1.service.d/handset.conf"
SECOND_LOGIN = "/run/systemd/system/getty@tty1.service.d"

# What /proc/PID/syscall begins with while a process sits in poll.
POLL = "7 "


class StartUp(Scenario):
    def test_theWholeInterfaceIsOnTheBus(self):
        text = self.device.machine.run("busctl", "introspect", "--xml-interface",
                                       device.BUS_NAME, device.OBJECT_PATH)
        tree = xml.etree.ElementTree.fromstring(text)
        (interface,) = tree.findall(f"interface[@name='{device.BUS_NAME}']")
        found = []
        for member in interface:
            sides = {"in": "", "out": ""}
            for argument in member.findall("arg"):
                default = "out" if member.tag == "signal" else "in"
                sides[argument.get("direction", default)] += argument.get("type")
            found.append((member.tag, member.get("name"), sides["in"], sides["out"]))
        self.assertEqual(sorted(found), sorted(MEMBERS))

    def test_everyUserMayCallAndNobodyElseMayOwnTheName(self):
        self.assertEqual(self.device.call("isRunning", user="handset").returncode, 0)
        self.device.stop(device.LUMD)
        refused = self.device.machine.shell(
            "setpriv --reuid=handset --regid=handset --init-groups busctl call "
            "org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus "
            f"RequestName su {device.BUS_NAME} 4", check=False)
        self.assertEqual(refused.returncode, 1)
        self.assertEqual(refused.stderr, "Call failed: Access denied\n")

    def test_aSecondDaemonEndsWithCodeOne(self):
        first = self.device.owner()
        second = self.device.machine.shell("timeout 60 /usr/sbin/lumd",
                                           check=False)
        self.assertEqual(second.returncode, 1)
        self.assertEqual(second.stderr, "com.tovra.lumd.daemon: "
                         "Cannot register D-Bus service at com.tovra.lumd\n")
        self.assertEqual(self.device.owner(), first)

    def test_whoIsNotRootIsToldSoWithCodeTwo(self):
        refused = self.device.machine.shell(
            "setpriv --reuid=handset --regid=handset --clear-groups timeout 60 /usr/sbin/lumd",
            check=False)
        self.assertEqual(refused.returncode, 2)
        self.assertEqual(refused.stderr, "/usr/sbin/lumd: Not running as root, exiting.\n")

    def test_theDaemonWaitsForAUserOnTheSeat(self):
        self.device.stop(device.LUMD)
        self.device.end_session()
        self.device.machine.run("systemctl", "start", "--no-block", device.LUMD)
        self.device.wait(self.polls, "lumd waits in poll")
        self.assertEqual(self.device.state(device.LUMD), "activating")
        self.assertIsNone(self.device.owner())
        self.device.start("getty@tty1.service")
        self.device.wait_state(device.LUMD, "active")
        self.assertIsNotNone(self.device.owner())

    def test_anotherUserOnTheSeatIsTheNextLumdsUser(self):
        machine = self.device.machine
        first = self.device.owner()
        machine.shell(f"""
            set -e
            useradd --create-home --uid {SECOND} --groups users second
            mkdir -p {SECOND_LOGIN}
            sed 's/autologin handset/autologin second/' {FIRST_LOGIN} > {SECOND_LOGIN}/second.conf
            systemctl daemon-reload""")
        self.addCleanup(self.bring_back_the_first_user)
        self.device.end_session()
        self.device.start("getty@tty1.service")
        self.wait_on_seat(SECOND)
        self.assertEqual(self.device.owner(), first)
        self.device.stop(device.LUMD)
        self.device.start(device.LUMD)
        self.device.call("launchApp", "s", apps.MAPS.package)
        told = f"/run/user/{SECOND}/notifications.jsonl"
        self.device.wait(lambda: apps.MAPS.package in machine.shell(
            f"cat {told}", check=False).stdout, "the second user is told")

    def wait_on_seat(self, uid):
        """Waits until that user is on the seat and hears notifications."""
        self.device.wait(lambda: self.device.machine.shell(
            f"grep -qx ACTIVE_UID={uid} /run/systemd/seats/seat0 && setpriv --reuid={uid} "
            f"--clear-groups --regid={uid} env XDG_RUNTIME_DIR=/run/user/{uid} "
            "systemctl --user --quiet is-active notification-recorder", check=False).returncode == 0,
            f"user {uid} is on the seat")

    def bring_back_the_first_user(self):
        self.device.machine.shell(f"rm -r {SECOND_LOGIN}; systemctl daemon-reload")
        self.device.end_session()
        self.device.machine.shell(f"systemctl stop user@{SECOND}.service; userdel --remove second")
        self.device.start("getty@tty1.service")
        self.wait_on_seat(1000)

    def polls(self):
        result = self.device.machine.shell(
            f"cat /proc/$(systemctl show --value --property=MainPID {device.LUMD})/syscall",
            check=False)
        return result.stdout.startswith(POLL)

    def test_theDaemonEndingLeavesTheNameFree(self):
        self.assertIsNotNone(self.device.owner())
        self.device.stop(device.LUMD)
        self.assertIsNone(self.device.owner())

    def test_onlyRootReachesTheBinderDevice(self):
        self.assertEqual(
            self.device.machine.run("stat", "--format=%F %U %a", "/dev/puddlejumper"),
            "character special file root 600\n")
