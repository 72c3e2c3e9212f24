# SPDX-License-Identifier: BSD-3-Clause
"""The demo's chapter of apps: installed, started, managed and removed by lumctl."""

import json
import shlex

import apps
import device
from demolaunchers import MAPS_RED
from demosteps import Steps
from session import Session
from wrappedapk import WrappedApk

# Exit codes of lumctl.
FAILED, REFUSED = 1, 4
DOWNLOADS = "/home/handset/Downloads"
NAME = apps.NOTES.launchers[0].caption
STORE_FILES = apps.STORE.files(partner_space=True)


class AppSteps(Steps):
    """Follows the chapter of launchers: maps and store are there, the runtime is up."""

    def __init__(self, handset):
        super().__init__(handset)
        self.session = Session(handset)
        self.steps = [self.install, self.refuse_apk, self.refuse_caller, self.launch,
                      self.settings_page, self.sizes, self.start_on_boot, self.time_zone,
                      self.upgrade, self.remove_package, self.read_log]

    def bus(self, method, *arguments):
        """Shows and makes a bus call, which must succeed; gives busctl's line of the result."""
        self.show(shlex.join(["lumd", method, *arguments]))
        result = self.device.call(method, *arguments)
        self.check(result.returncode == 0, result.stderr)
        answer = result.stdout.strip()
        self.show(f"  {answer}" if answer else "  no result")
        return answer

    def put_apk(self, app, **extra):
        """Puts an apk where a user keeps his downloads; gives its path."""
        path = f"{DOWNLOADS}/{app.package}.apk"
        self.device.write({path: app.apk(**extra)})
        return path

    def expect_sizes(self, *expected):
        """lumctl shows these sizes of code, data and cache."""
        rows = dict(line.split(":", 1) for line in self.lumctl("info", NAME).splitlines())
        self.expect(tuple(rows[key].strip() for key in ("Code", "Data", "Cache")), expected)

    def expect_notified(self, *expected):
        """The user was notified of exactly this since the step began: summary and body."""
        notifications = self.session.wait_notifications(len(expected))
        texts = [(line["summary"], line["body"]) for line in notifications]
        self.expect(texts, list(expected))
        for summary, body in texts:
            self.show(f"the user reads: {' / '.join(part for part in (summary, body) if part)}")

    def install(self):
        """An app is installed while the runtime is stopped: kept, started for, carried out"""
        self.session.reset()
        self.device.stop(device.RUNTIME)
        path = self.put_apk(apps.NOTES, codeBytes=52_000_000, dataBytes=700_000,
                            cacheBytes=200_000)
        self.expect(self.lumctl("install", path).splitlines(),
                    [f"{path}: waits until the Android runtime is up",
                     f"{path}: installed as {apps.NOTES.package}"])
        self.expect(self.device.state(device.RUNTIME), "active")
        self.expect_notified((f"App installed: {NAME}", ""))
        self.check_files(MAPS_RED.files(), STORE_FILES, apps.NOTES.files())
        for path in sorted(apps.NOTES.files()):
            self.show(f"new  {path}")

    def refuse_apk(self):
        """Android refuses an apk: the user is told why"""
        self.session.reset()
        path = self.put_apk(apps.KEYBOARD, fail=-25, message="Version 11 is older than 12")
        self.expect(self.lumctl("install", path, code=FAILED),
                    f"lumctl: {path}: not installed: Version 11 is older than 12")
        self.expect_notified((f"App could not be installed: {apps.KEYBOARD.package}",
                              "Version 11 is older than 12"))

    def refuse_caller(self):
        """An ordinary program may not install"""
        self.session.reset()
        path = f"{DOWNLOADS}/{apps.NOTES.package}.apk"
        self.lumctl("install", path, user="handset", code=REFUSED)
        self.expect_notified(("", "Installing Android apps is not allowed on this device"))

    def launch(self):
        """The Exec line of a desktop entry starts the app, and its window opens"""
        (entry,) = [path for path in apps.NOTES.files() if path.endswith(".desktop")]
        text = self.machine.run("cat", entry)
        (line,) = [line for line in text.splitlines() if line.startswith("Exec=")]
        command = line.removeprefix("Exec=")
        self.show(f"as handset: {command}")
        self.machine.shell(shlex.join(self.device.as_user("handset", *shlex.split(command))))
        self.expect(self.device.runtime("windows")["windows"], [apps.NOTES.package])
        self.show(f"Android shows a window of {apps.NOTES.package}")

    def settings_page(self):
        """Android's settings page of the app opens"""
        self.lumctl("settings", NAME)
        intent = self.device.calls("activity")[-1]["arguments"]["intent"]
        self.expect((intent["action"], intent["data"]),
                    ("android.settings.APPLICATION_DETAILS_SETTINGS",
                     f"package:{apps.NOTES.package}"))
        self.show(f"Android got the intent {intent['action']} {intent['data']}")

    def sizes(self):
        """How much room apps take, and how it is freed"""
        self.expect_sizes("49.59 MiB", "488.28 KiB", "195.31 KiB")
        self.lumctl("clear-cache", NAME)
        self.device.wait_event("clear", "what=cache", f"package={apps.NOTES.package}")
        self.expect_sizes("49.59 MiB", "488.28 KiB", "0 bytes")
        self.lumctl("clear-data", "--yes", NAME)
        self.device.wait_event("clear", "what=data", f"package={apps.NOTES.package}")
        self.expect_sizes("49.59 MiB", "0 bytes", "0 bytes")
        self.show("what all apps use is asked for on the bus:")
        self.show(device.SHORTHAND)
        self.device.write({f"{device.APP_DATA}/{apps.NOTES.package}/notes": "x" * 5000})
        total = self.machine.run("du", "-sxb", device.APP_DATA).split()[0]
        self.expect(self.bus("getAndroidAppDataUsage"), f"t {total}")
        self.lumctl("launch", NAME)
        self.lumctl("stop", NAME)
        self.check(apps.NOTES.package not in self.device.runtime("windows")["windows"],
                   "the window is still there")
        self.show("its window is closed")

    def start_on_boot(self):
        """An app may start when the device boots; programs hear of the change"""
        self.session.watch_signals()
        self.expect(self.lumctl("autostart", NAME, "on"), f"{NAME}: starts on boot")
        signal = ["appStartOnBootupChanged", apps.NOTES.package, True]
        self.device.wait(lambda: self.session.signals() == [signal], "the signal")
        self.show(f"signal {json.dumps(signal)}")

    def time_zone(self):
        """Android's time zone follows the host's"""
        for zone in ("Asia/Tokyo", "Europe/Helsinki"):
            self.show(f"timedatectl set-timezone {zone}")
            self.machine.run("timedatectl", "set-timezone", zone)
            self.device.wait(lambda zone=zone: self.device.runtime("timezone")["timezone"] == zone,
                             f"Android's zone is {zone}")
            self.show(f"  Android's time zone is {zone}")

    def upgrade(self):
        """The runtime is about to be upgraded: the home screen is told, launcher by launcher"""
        self.session.start_home_screen()
        self.bus("notifyRuntimeUpgrade", "b", "true")
        self.bus("notifyRuntimeUpgrade", "b", "false")
        launchers = len(apps.MAPS.launchers + apps.STORE.launchers + apps.NOTES.launchers)
        calls = self.session.home_screen_calls()
        self.expect([call[0] for call in calls],
                    ["updatingStarted"] * launchers + ["updatingFinished"] * launchers)
        for call in calls:
            self.show(f"the home screen got {' '.join(call[:2])}")

    def remove_package(self):
        """An app that came in a package of the host's is removed, and its package with it"""
        self.session.reset()
        package = WrappedApk(self.device, apps.KEYBOARD)
        package.install()
        self.show(f"{package.name} is installed, with {package.apk}")
        # Nobody is told of what comes with a package, so that nothing is waited for.
        self.expect(self.lumctl("install", "--no-wait", package.apk),
                    f"{package.apk}: handed over to lumd")
        self.device.wait_event("install", f"package={apps.KEYBOARD.package}", "returnCode=1")
        self.check_files(MAPS_RED.files(), STORE_FILES, apps.NOTES.files(),
                         apps.KEYBOARD.files(hidden=True))
        self.expect(self.bus("removeFile", "s", package.apk), "b true")
        self.device.wait_event("delete", f"package={apps.KEYBOARD.package}", "returnCode=1")
        self.device.wait(lambda: not package.is_installed(), f"{package.name} is removed")
        self.show(f"PackageKit has removed {package.name}")
        self.check_files(MAPS_RED.files(), STORE_FILES, apps.NOTES.files())
        self.expect(self.session.notifications(), [])

    def read_log(self):
        """Both logs hold what was provoked, and no other complaint"""
        refused = f"{device.INCOMING}/{apps.KEYBOARD.package}.apk"
        self.no_complaint("APK installation prohibited",
                          f'File already exists in incoming folder: "{refused}"')
