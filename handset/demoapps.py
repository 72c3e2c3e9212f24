# SPDX-License-Identifier: BSD-3-Clause
"""The demo's chapter of apps: installed, started, managed and removed over the bus."""

import json
import shlex

import apps
import device
from demolaunchers import MAPS_RED
from demosteps import Steps
from session import Session
from wrappedapk import WrappedApk

DOWNLOADS = "/home/handset/Downloads"
STORE_FILES = apps.STORE.files(partner_space=True)


class AppSteps(Steps):
    """Follows the chapter of launchers: maps and store are there, the runtime is up."""

    def __init__(self, handset):
        super().__init__(handset)
        self.session = Session(handset)
        self.steps = [self.install, self.refuse_apk, self.refuse_caller, self.launch,
                      self.settings_page, self.sizes, self.start_on_boot, self.time_zone,
                      self.upgrade, self.remove_package, self.read_log]

    def bus(self, method, *arguments, user="root"):
        """Shows and makes a bus call, which must succeed; gives busctl's line of the result."""
        typed = shlex.join(["lumd", method, *arguments])
        self.show(typed if user == "root" else f"as {user}: {typed}")
        result = self.device.call(method, *arguments, user=user)
        self.check(result.returncode == 0, result.stderr)
        answer = result.stdout.strip()
        self.show(f"  {answer}" if answer else "  no result")
        return answer

    def put_apk(self, app, **extra):
        """Puts an apk where a user keeps his downloads; gives its path."""
        path = f"{DOWNLOADS}/{app.package}.apk"
        self.device.write({path: app.apk(**extra)})
        return path

    def expect(self, found, expected):
        self.check(found == expected, f"is {found}\nand should be {expected}")

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
        self.show(device.SHORTHAND)
        self.device.stop(device.RUNTIME)
        path = self.put_apk(apps.NOTES, codeBytes=52_000_000, dataBytes=700_000,
                            cacheBytes=200_000)
        self.expect(self.bus("installFile", "s", path), "b true")
        self.device.wait_state(device.RUNTIME, "active")
        self.show("the runtime is up")
        self.device.wait_event("install", f"package={apps.NOTES.package}", "returnCode=1")
        self.expect_notified(("App installed: Notizbücher", ""))
        self.check_files(MAPS_RED.files(), STORE_FILES, apps.NOTES.files())
        for path in sorted(apps.NOTES.files()):
            self.show(f"new  {path}")

    def refuse_apk(self):
        """Android refuses an apk: the user is told why"""
        self.session.reset()
        path = self.put_apk(apps.KEYBOARD, fail=-25, message="Version 11 is older than 12")
        self.expect(self.bus("installFile", "s", path), "b true")
        self.expect_notified((f"App could not be installed: {apps.KEYBOARD.package}",
                              "Version 11 is older than 12"))

    def refuse_caller(self):
        """An ordinary program may not install"""
        self.session.reset()
        path = f"{DOWNLOADS}/{apps.NOTES.package}.apk"
        self.expect(self.bus("installFile", "s", path, user="handset"), "b false")
        self.expect_notified(("", "Installing Android apps is not allowed on this device"))

    def launch(self):
        """The Exec line of a desktop entry starts the app, and its window opens"""
        (entry,) = [path for path in apps.NOTES.files() if path.endswith(".desktop")]
        text = self.machine.run("cat", entry)
        (line,) = [line for line in text.splitlines() if line.startswith("Exec=")]
        command = line.removeprefix("Exec=")
        self.show(f"as handset: {command}")
        self.machine.shell(shlex.join(["setpriv", "--reuid=handset", "--regid=handset",
                                       "--init-groups", *shlex.split(command)]))
        self.expect(self.device.runtime("windows")["windows"], [apps.NOTES.package])
        self.show(f"Android shows a window of {apps.NOTES.package}")

    def settings_page(self):
        """Android's settings page of the app opens"""
        self.bus("openAppSettings", "s", apps.NOTES.package)
        intent = self.device.calls("activity")[-1]["arguments"]["intent"]
        self.expect((intent["action"], intent["data"]),
                    ("android.settings.APPLICATION_DETAILS_SETTINGS",
                     f"package:{apps.NOTES.package}"))
        self.show(f"Android got the intent {intent['action']} {intent['data']}")

    def sizes(self):
        """How much room apps take, and how it is freed"""
        size = ("getAppSize", "s", apps.NOTES.package)
        self.expect(self.bus(*size), "(xxx) 52000000 500000 200000")
        self.bus("deleteAppCacheFiles", "s", apps.NOTES.package)
        self.device.wait_event("clear", "what=cache", f"package={apps.NOTES.package}")
        self.expect(self.bus(*size), "(xxx) 52000000 500000 0")
        self.bus("clearAppUserData", "s", apps.NOTES.package)
        self.device.wait_event("clear", "what=data", f"package={apps.NOTES.package}")
        self.expect(self.bus(*size), "(xxx) 52000000 0 0")
        self.device.write({f"{device.APP_DATA}/{apps.NOTES.package}/notes": "x" * 5000})
        total = self.machine.run("du", "-sxb", device.APP_DATA).split()[0]
        self.expect(self.bus("getAndroidAppDataUsage"), f"t {total}")
        self.bus("launchApp", "s", apps.NOTES.package)
        self.bus("forceStopApp", "s", apps.NOTES.package)
        self.check(apps.NOTES.package not in self.device.runtime("windows")["windows"],
                   "the window is still there")
        self.show("its window is closed")

    def start_on_boot(self):
        """An app may start when the device boots; programs hear of the change"""
        self.session.watch_signals()
        question = ("getAppStartOnBootup", "s", apps.NOTES.package)
        self.expect(self.bus(*question), "b false")
        self.bus("setAppStartOnBootup", "sb", apps.NOTES.package, "true")
        self.expect(self.bus(*question), "b true")
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
        self.expect(self.bus("installFile", "s", package.apk), "b true")
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
