# SPDX-License-Identifier: BSD-3-Clause
"""What a handset may lack: each time a line says so, and what can be done is done."""

import apps
import device
from appscenario import AppScenario
from wrappedapk import WrappedApk

BINDER = "/dev/puddlejumper"
PROTOCOL = "/etc/gbinder.d/lumd.conf"
SETTINGS_APPLICATION = "/usr/share/tovra-settings"
PACKAGEKIT = "/usr/share/dbus-1/system-services/org.freedesktop.PackageKit.service"
SILENT = ("Alien Dalvik has been up for a minute, and its services are not found: "
          "is /etc/gbinder.d/lumd.conf there, and set for its Android release?")


class Missing(AppScenario):
    def take_away(self, path):
        """Has the handset be without a file or folder, until it is brought back."""
        self.device.machine.run("mv", path, f"{path}.away")
        self.addCleanup(self.bring_back, path)

    def bring_back(self, path):
        self.device.machine.shell(f"[ ! -e {path}.away ] || mv {path}.away {path}")

    def restart_lumd(self):
        self.device.machine.run("systemctl", "restart", device.LUMD)

    def test_withoutTheBinderDeviceLumdWaitsForIt(self):
        self.device.install(apps.MAPS)
        self.take_away(BINDER)
        self.restart_lumd()
        self.assertIsNotNone(self.device.owner())
        self.bus("launchApp", "s", apps.MAPS.package)
        self.device.wait(self.device.warnings, "a line tells of it")
        self.device.wait(lambda: self.device.state(device.RUNTIME) == "failed",
                         "the runtime does not start either")
        self.bring_back(BINDER)
        self.device.start_runtime()
        self.wait_files(apps.MAPS.files())
        self.device.wait(lambda: self.device.runtime("windows")["windows"] == [apps.MAPS.package],
                         "the app that was asked for is started")
        self.expected_warnings = ["Unable to find Alien service manager for alien.launcher"]
        self.expected_errors = [f"{BINDER}: No such file or directory",
                                "alien-servicemanager ended with 1"]

    def test_withoutTheProtocolAWordIsSaidAndTheAppsComeWithIt(self):
        self.device.install(apps.MAPS)
        self.take_away(PROTOCOL)
        self.restart_lumd()
        self.device.start(device.RUNTIME)
        self.device.wait(self.device.warnings, "a line tells of it")
        self.assertEqual(self.device.warnings(), [SILENT])
        self.bring_back(PROTOCOL)
        self.restart_lumd()
        self.wait_files(apps.MAPS.files())
        self.assert_files(apps.MAPS.files())
        self.expected_warnings = [SILENT]
        # What it could not read of the calls made in the other protocol.
        self.expected_errors = [event["error"] for event in self.device.runtime_errors()]

    def test_withoutPackageKitTheAppGoesAndItsPackageStays(self):
        self.device.start_runtime()
        package = WrappedApk(self.device, apps.KEYBOARD)
        self.addCleanup(package.purge)
        package.install()
        self.assertEqual(self.bus("installFile", "s", package.apk), "b true")
        self.wait_installed(apps.KEYBOARD)
        self.addCleanup(self.device.machine.shell, "systemctl reload dbus")
        self.take_away(PACKAGEKIT)
        self.device.machine.shell("systemctl stop packagekit; systemctl reload dbus")
        self.assertEqual(self.bus("removeFile", "s", package.apk), "b true")
        self.device.wait_event("delete", f"package={apps.KEYBOARD.package}", "returnCode=1")
        self.device.wait(self.device.warnings, "a line tells of it")
        self.wait_files()
        self.assertTrue(package.is_installed())
        self.expected_warnings = [
            f'There is no PackageKit that could remove "mirlane-apk-{apps.KEYBOARD.package}"']

    def test_withoutASettingsApplicationTheLaunchersComeAllTheSame(self):
        self.device.install(apps.NOTES)
        page = next(path for path in apps.NOTES.files() if path.startswith(apps.SETTINGS))
        self.take_away(SETTINGS_APPLICATION)
        self.restart_lumd()
        self.device.start_runtime()
        self.assertEqual(set(self.device.machine.run(
            "find", apps.APPLICATIONS, apps.ICONS, "-name", "lumd_*").split()),
            set(apps.NOTES.files()) - {page})
        self.bring_back(SETTINGS_APPLICATION)
        self.restart_lumd()
        self.wait_files(apps.NOTES.files())
        self.assert_files(apps.NOTES.files())
        self.expected_warnings = [f'Unable to write json file "{page}" for writing']
