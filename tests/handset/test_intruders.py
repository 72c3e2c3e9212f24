# SPDX-License-Identifier: BSD-3-Clause
"""What somebody on the handset who is up to no good gets from lumd."""

import callers
import device
from appscenario import DOWNLOADS, AppScenario

ACCESS_DENIED = "org.freedesktop.DBus.Error.AccessDenied"
# A device whose own policy lets descriptors through.
LOOSE_POLICY = "/etc/dbus-1/system.d/zz-loose.conf"
LOOSE_POLICY_TEXT = f"""<busconfig><policy context="mandatory">
<allow send_destination="{device.BUS_NAME}"/></policy></busconfig>
"""
HUGE = "/run/huge.apk"
INTENTS = 100
TRIES = 10


class Intruders(AppScenario):
    def setUp(self):
        super().setUp()
        self.callers = callers.Callers(self.device)

    def open_files(self):
        return int(self.device.machine.shell(
            f"ls /proc/{self.device.owner()}/fd | wc -l").stdout)

    def test_theBusLetsNoDescriptorsThrough(self):
        before, lumd = self.open_files(), self.device.owner()
        self.assertEqual(self.callers.send_descriptors("handset", INTENTS),
                         {ACCESS_DENIED: INTENTS})
        self.assertEqual((self.open_files(), self.device.owner()), (before, lumd))
        self.assertEqual(self.device.state(device.RUNTIME), "inactive")

    def test_intentsThatWaitForTheRuntimeKeepNoDescriptors(self):
        self.loosen_the_policy()
        self.keep_the_runtime_down()
        before, lumd = self.open_files(), self.device.owner()
        self.assertEqual(self.callers.send_descriptors("handset", INTENTS),
                         {"answered": INTENTS})
        self.assertLessEqual(self.open_files() - before, 2)
        self.assertEqual(self.device.owner(), lumd)
        self.let_the_runtime_up()
        self.device.start_runtime()
        self.device.wait(lambda: len(self.device.calls("activity")) >= INTENTS, "all are started")
        calls = self.device.calls("activity")
        # Android refuses the containers, of which lumd can write none.
        self.expected_warnings = self.device.warnings()
        self.expected_errors = [call["error"] for call in calls if "error" in call]
        self.assertEqual(len(self.expected_errors), INTENTS // 2)
        self.assertEqual([call["arguments"]["intent"]["extras"] for call in calls
                          if "error" not in call],
                         [{"kept": {"type": "string", "value": "text"}}] * (INTENTS // 2))

    def loosen_the_policy(self):
        self.device.write({LOOSE_POLICY: LOOSE_POLICY_TEXT})
        self.addCleanup(self.device.machine.shell,
                        f"rm {LOOSE_POLICY} && systemctl reload dbus")
        self.device.machine.run("systemctl", "reload", "dbus")

    def keep_the_runtime_down(self):
        self.addCleanup(self.let_the_runtime_up)
        self.device.machine.run("systemctl", "mask", "--quiet", "--runtime", device.RUNTIME)

    def let_the_runtime_up(self):
        self.device.machine.run("systemctl", "unmask", "--quiet", "--runtime", device.RUNTIME)

    def test_whoBecomesSuBehindHisCallIsNotPrivileged(self):
        # lumd sees the calls when all who made them are root's processes.
        lumd = self.device.owner()
        self.addCleanup(self.device.machine.shell, f"systemctl stop {callers.BECOMING_SU_UNIT}",
                        check=False)
        self.addCleanup(self.device.machine.shell, f"kill -CONT {lumd}", check=False)
        self.device.machine.shell(f"kill -STOP {lumd}")
        self.callers.become_su(TRIES)
        self.device.machine.shell(f"kill -CONT {lumd}")
        self.device.wait(self.all_are_handled, "lumd has seen the calls")
        self.expected_warnings = ["APK uninstallation prohibited"] * TRIES
        self.assertEqual(self.device.warnings(), self.expected_warnings)
        self.assertEqual(self.device.state(device.RUNTIME), "inactive")

    def all_are_handled(self):
        """Whether lumd has refused them all, or started the runtime for one."""
        return (len(self.device.warnings()) >= TRIES
                or self.device.state(device.RUNTIME) != "inactive")

    def test_aFileThatTheCallerMayNotReadIsNotStaged(self):
        self.allow_everybody_to_install()
        self.refuse("/etc/shadow", user="handset")

    def test_onlyARegularFileThatFitsIsStaged(self):
        self.allow_everybody_to_install()
        fifo = f"{DOWNLOADS}/pipe.apk"
        self.device.machine.shell(f"mkdir -p {DOWNLOADS}; rm -f {fifo}; mkfifo -m 666 {fifo}; "
                                  f"truncate --size=100T {HUGE}; chmod 644 {HUGE}")
        self.addCleanup(self.device.machine.run, "rm", fifo, HUGE)
        for user in ("handset", "root"):
            for path in (fifo, "/dev/zero", "/proc/version", HUGE):
                with self.subTest(user=user, path=path):
                    self.refuse(path, user)

    def allow_everybody_to_install(self):
        self.device.write({device.POLICY: "[policy]\n6=true\n"})
        self.device.start_runtime()

    def refuse(self, path, user):
        """An install of this fails, and nothing of it is left."""
        self.assertEqual(self.bus("installFile", "s", path, user=user), "b false")
        name = path.rpartition("/")[2]
        self.expected_warnings.append(f'Could not copy incoming file: "{path}" -> '
                                      f'"{device.INCOMING}/{name}.tmp"')
        self.assertEqual(self.device.machine.run("ls", device.INCOMING), "")
        self.assertEqual(self.device.calls("alien", "package"), [])
