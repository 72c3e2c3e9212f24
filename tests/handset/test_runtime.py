# SPDX-License-Identifier: BSD-3-Clause
"""The runtime's unit as systemd passes through its states, and lumd beside it."""

import apps
import device
from scenario import Scenario

# How long, at most, services of a runtime that stays active are back before lumd knows.
RECONNECT_SECONDS = 5


class Runtime(Scenario):
    def registered(self):
        """Whether alien.launcher is registered with the runtime's service manager."""
        return "alien.launcher" in self.device.runtime("status")["services"]

    def test_aStartAndAStopAreSeenStateByState(self):
        self.device.configure_runtime(readyDelay=500, stopDelay=500)
        self.device.start_runtime()
        self.device.stop(device.RUNTIME)
        self.device.wait_states("inactive", "activating", "active", "deactivating", "inactive")

    def test_theLauncherServiceIsThereWhileTheRuntimeIsStillActivating(self):
        self.device.configure_runtime(readyDelay=60000)
        self.device.install(apps.MAPS)
        self.device.machine.run("systemctl", "start", "--no-block", device.RUNTIME)
        self.device.wait_control()
        self.device.wait_announced()
        self.assertEqual(self.device.state(device.RUNTIME), "activating")
        self.assertTrue(self.registered())
        self.assert_files(apps.MAPS.files())

    def test_anAnnouncementOfAStoppingRuntimeReachesNobody(self):
        self.device.configure_runtime(stopDelay=60000)
        self.device.start_runtime()
        self.device.machine.run("systemctl", "stop", "--no-block", device.RUNTIME)
        self.device.wait_states("inactive", "activating", "active", "deactivating")
        # Its name stays with the service manager, which knows no way to take one back.
        self.device.announce(apps.MAPS)
        self.assertEqual(self.device.state(device.RUNTIME), "deactivating")
        self.assert_files()
        self.device.kill(device.RUNTIME)
        self.expected_errors = ["status -74"] * len(apps.MAPS.launchers)

    def test_lumdStartedOnAnActiveRuntimeServesItAtOnce(self):
        self.device.stop(device.LUMD)
        self.device.install(apps.MAPS)
        self.device.start(device.RUNTIME)
        self.assertFalse(self.registered())
        self.device.start(device.LUMD)
        self.device.wait_announced()
        self.assert_files(apps.MAPS.files())

    def test_lumdStartedAnewIsToldOfEverythingAgain(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start(device.RUNTIME)
        first = self.device.wait_announced()
        before = self.device.files()
        self.device.stop(device.LUMD)
        self.device.wait(lambda: not self.registered(), "alien.launcher is gone")
        self.device.start(device.LUMD)
        self.device.wait_announced(after=first)
        self.assert_rewritten(before)

    def test_aRuntimeThatIsKilledIsSeenAsFailedAndServedAgain(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        lumd = self.device.owner()
        self.device.kill(device.RUNTIME)
        self.assertEqual(self.device.state(device.RUNTIME), "failed")
        self.device.wait(lambda: self.device.seen_states()[-1] == "failed", "failed is seen")
        died = [line.text for line in self.device.log(priority="warning")]
        told = {f"{service} died! Trying to reconnect." for service in device.PERSISTENT_SERVICES}
        # Systemd passes through that state while the last process of several is ended. A link
        # that lumd has dropped for it dies unheard.
        if "deactivating" in self.device.seen_states():
            self.assertLessEqual(set(died), told)
        else:
            self.assertEqual(set(died), told)
        self.assertEqual(len(died), len(set(died)))
        self.expected_warnings = died
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        self.assertEqual(self.device.owner(), lumd)
        self.assert_files(apps.MAPS.files(), apps.NOTES.files())

    def test_servicesThatCrashAloneAreFoundAgainAndGetWhatWasAskedMeanwhile(self):
        self.device.start_runtime()
        lumd = self.device.owner()
        self.device.runtime("crash")
        self.device.wait(lambda: len(self.device.warnings()) >= len(device.PERSISTENT_SERVICES),
                         "lumd has seen them die")
        self.expected_warnings = self.device.warnings()
        self.assertEqual(sorted(self.expected_warnings),
                         sorted(f"{service} died! Trying to reconnect."
                                for service in device.PERSISTENT_SERVICES))
        self.device.call("launchApp", "s", apps.MAPS.package)
        self.device.call("removeFile", "s", apps.MAPS.package)
        self.device.runtime("recover")
        self.device.wait_event("delete", f"package={apps.MAPS.package}")
        self.device.wait_event("call", "method=launchPackage")
        back = max(event["time"] for event in self.device.timeline("registered"))
        asked = [event["time"] for event in self.device.timeline("call")
                 if event["method"] in ("deletePackageAsUser", "launchPackage")]
        self.assertEqual(len(asked), 2)
        self.assertLess(max(asked) - back, RECONNECT_SECONDS)
        self.assertEqual(self.device.state(device.RUNTIME), "active")
        self.assertEqual(self.device.owner(), lumd)

    def test_controlServiceStartsAndStopsTheRuntime(self):
        for user in ("root", "handset"):
            with self.subTest(user=user):
                self.assertEqual(
                    self.device.call("controlService", "b", "true", user=user).returncode, 0)
                self.device.wait_state(device.RUNTIME, "active")
                self.assertEqual(
                    self.device.call("controlService", "b", "false", user=user).returncode, 0)
                self.device.wait_state(device.RUNTIME, "inactive")

    def test_controlServiceAutostartEnablesAndDisablesTheRuntime(self):
        def enabled():
            return self.device.machine.shell(f"systemctl is-enabled {device.RUNTIME}",
                                             check=False).stdout.strip()

        self.assertEqual(enabled(), "disabled")
        self.device.call("controlServiceAutostart", "b", "true")
        self.device.wait(lambda: enabled() == "enabled", "the unit is enabled")
        self.device.call("controlServiceAutostart", "b", "false")
        self.device.wait(lambda: enabled() == "disabled", "the unit is disabled")
