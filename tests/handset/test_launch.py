# SPDX-License-Identifier: BSD-3-Clause
"""Apps and settings pages that are started from the session."""

import shlex

import apps
import device
from appscenario import AppScenario, entry_path, intent, start

SDK = 29
START = 7


def main_intent(app):
    """What the entry of the app's first launcher starts."""
    return intent(SDK, "android.intent.action.MAIN", flags=0x10004000, package=app.package,
                  component={"package": app.package,
                             "class": app.launchers[0].class_name},
                  categories=["android.intent.category.LAUNCHER"])


def asked(package):
    """The question whether a package has a window."""
    return "SurfaceFlinger", 103, "hasWindow", {"package": package}


class Launch(AppScenario):
    def start_entry(self, app, check=True):
        """Runs the Exec line of the app's entry as the user of the handset."""
        text = self.device.machine.run("cat", entry_path(app))
        (line,) = [line for line in text.splitlines() if line.startswith("Exec=")]
        return self.device.machine.shell(shlex.join(
            ["setpriv", "--reuid=handset", "--regid=handset", "--init-groups",
             *shlex.split(line.removeprefix("Exec="))]), check=check)

    def started(self):
        return self.device.calls("activity", "SurfaceFlinger", "alien")

    def assert_started(self, *expected):
        """These calls come, the questions for a window in their own time, and no others."""
        self.device.wait(lambda: len(self.started()) >= len(expected), f"{expected}")
        self.assert_calls(self.started(), *expected)

    def test_theExecLineOfAnEntryStartsItsActivity(self):
        self.device.configure_runtime(windowPolls=2)
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        result = self.start_entry(apps.MAPS)
        self.assertEqual((result.stdout, result.stderr), ("", ""))
        self.assert_started(
            ("activity", START, "startActivity", start(main_intent(apps.MAPS))),
            *[asked(apps.MAPS.package)] * 3)
        self.assertEqual(self.device.runtime("windows")["windows"], [apps.MAPS.package])

    def test_theExecLineStartsAStoppedRuntimeAndTellsTheUser(self):
        self.device.install(apps.NOTES)
        self.device.start_runtime()
        self.device.stop(device.RUNTIME)
        self.start_entry(apps.NOTES)
        self.assert_notified(("", "Starting Android App Support to open Notizbücher"))
        self.device.wait_state(device.RUNTIME, "active")
        self.assert_started(
            ("activity", START, "startActivity", start(main_intent(apps.NOTES))),
            asked(apps.NOTES.package))

    def test_theExecLineSaysThatLumdIsMissing(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.device.stop(device.LUMD)
        result = self.start_entry(apps.MAPS, check=False)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(f"lumd-launcher: cannot launch {apps.MAPS.package}: ", result.stderr)

    def test_appsAskedForWhileTheRuntimeIsStoppedAreLaunchedEachTime(self):
        self.device.configure_runtime(readyDelay=5000)
        for _ in range(2):
            self.assertEqual(self.bus("launchApp", "s", apps.MAPS.package), "")
        self.assert_notified(
            *[("", f"Starting Android App Support to open {apps.MAPS.package}")] * 2)
        self.device.wait_state(device.RUNTIME, "active")
        self.device.wait_event("call", "method=launchPackage")
        self.device.wait(lambda: len(self.started()) >= 2, "two launches")
        self.assert_calls(self.started(), *[
            ("alien", 1, "launchPackage", {"package": apps.MAPS.package})] * 2)

    def test_theSettingsPageOfAnAppOpensOnAStoppedRuntime(self):
        self.assertEqual(self.bus("openAppSettings", "s", apps.MAPS.package), "")
        self.assert_notified(("", "Starting Android App Support to open com.android.settings"))
        self.device.wait_event("call", "service=SurfaceFlinger")
        settings = intent(SDK, "android.settings.APPLICATION_DETAILS_SETTINGS",
                          data=f"package:{apps.MAPS.package}", package="com.android.settings",
                          flags=0x10008000)
        self.assert_started(
            ("activity", START, "startActivity", start(settings)), asked("com.android.settings"))

    def test_anIntentStartsAlthoughItsExtrasAreDamaged(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.bus("launchIntent", "ssssssa{sv}", "android.intent.action.VIEW", "", "",
                 apps.MAPS.package, "", "", "1", "list", "as", "1", "x")
        # Nobody unpacks extras before the app does.
        self.device.wait_event("call", "service=SurfaceFlinger")
        call, *questions = self.started()
        self.assertIn("error", call)
        self.assertEqual(call["arguments"]["intent"]["extras"], {})
        self.assert_calls(questions, asked(apps.MAPS.package))
        self.assertEqual(self.device.runtime("windows")["windows"], [apps.MAPS.package])
        self.expected_errors = [call["error"]]
        self.expected_warnings = ['Unsupported write bundle type! QStringList']
