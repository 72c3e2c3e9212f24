# SPDX-License-Identifier: BSD-3-Clause
"""Every method of the bus at each Android level, and each byte that it sends."""

import androidlevels
import apps
import device
from appscenario import AppScenario, intent, runtime_path, start

# Android's transaction codes at the levels.
CODES = {
    27: {"install": 60, "delete": 64, "cache": 100, "data": 101, "start": 3, "stop": 72,
         "sizes": 6, "whitelisted": 13},
    28: {"install": 2, "delete": 63, "cache": 100, "data": 101, "start": 6, "stop": 77,
         "sizes": 7, "whitelisted": 16},
    29: {"install": 2, "delete": 66, "cache": 103, "data": 104, "start": 7, "stop": 68,
         "sizes": 7, "whitelisted": 16},
}
PACKAGE = apps.MAPS.package
MAIN = apps.MAPS.launchers[0].class_name


class Levels(AppScenario):
    def setUp(self):
        super().setUp()
        self.sdk = 0
        self.seen = 0

    def expect(self, *expected):
        """These calls came since the last look, or come while lumd waits for a window."""
        self.device.wait(lambda: len(self.new_calls()) >= len(expected), f"{expected}")
        calls = self.new_calls()
        self.seen = max([self.seen] + [call["seq"] for call in calls])
        for call in calls:
            if call["arguments"].get("observer"):
                call["arguments"]["observer"] = "an object"
        self.assert_calls(calls, *expected)

    def new_calls(self):
        return [call for call in self.device.calls() if call["seq"] > self.seen]

    def run_level(self, sdk):
        self.sdk = sdk
        self.codes = CODES[sdk]
        self.device.stop(device.LUMD)
        self.device.write(androidlevels.sdk_files(sdk))
        self.device.start(device.LUMD)
        self.control_the_runtime()
        self.install_three_ways()
        self.start_things()
        self.manage_the_app()
        self.ask_what_needs_no_android()
        self.remove_the_app()

    def control_the_runtime(self):
        self.assertEqual(self.bus("controlServiceAutostart", "b", "true"), "")
        self.device.wait(lambda: self.unit_file_state() == "enabled", "the unit is enabled")
        self.assertEqual(self.bus("controlServiceAutostart", "b", "false"), "")
        self.device.wait(lambda: self.unit_file_state() == "disabled", "the unit is disabled")
        self.assertEqual(self.bus("controlService", "b", "true"), "")
        self.device.wait_state(device.RUNTIME, "active")
        self.device.wait_event("call", "service=alarm")
        self.assertEqual(self.device.runtime("status")["sdk"], self.sdk)
        zone = self.device.machine.run("timedatectl", "show", "--property=Timezone", "--value")
        self.expect(("alarm", 3, "setTimeZone", {"zone": zone.strip()}))

    def unit_file_state(self):
        return self.device.machine.run("systemctl", "show", "--value",
                                       "--property=UnitFileState", device.RUNTIME).strip()

    def install_three_ways(self):
        path = self.put_apk(apps.MAPS)
        last = 0
        for number, method in enumerate(
                ("installFile", "installPreloadFile", "installPartnerSpaceFile")):
            arguments = {"path": runtime_path(apps.MAPS),
                         "observer": None if number else "an object"}
            service, name = "alien", "installPackage"
            if self.sdk == 27:
                service, name = "package", "installPackageAsUser"
                arguments.update(flags=66, installer=None)
            self.assertEqual(self.bus(method, "s", path), "b true")
            found = self.device.wait_event("install", after=last)
            last = found["seq"]
            self.assertEqual((found["package"], found["returnCode"], found["observed"]),
                             (PACKAGE, 1, not number))
            self.expect((service, self.codes["install"], name, arguments))
        self.expected_warnings += [
            f'File already exists in incoming folder: "{device.INCOMING}/{PACKAGE}.apk"'] * 2
        self.assert_notified(("App installed: Maps", ""))

    def start_things(self):
        settings = {"package": "com.android.settings", "flags": 0x10008000}
        window = ("SurfaceFlinger", 103, "hasWindow", {"package": "com.android.settings"})
        self.assertEqual(self.bus("openAppSettings", "s", PACKAGE), "")
        self.expect_start(intent(self.sdk, "android.settings.APPLICATION_DETAILS_SETTINGS",
                                 data=f"package:{PACKAGE}", **settings), window)
        self.assertEqual(self.bus("viewLicenses"), "")
        self.expect_start(intent(self.sdk, "android.settings.LEGAL_INFO", **settings), window)
        self.assertEqual(self.bus("launchApp", "s", PACKAGE), "")
        self.expect(("alien", 1, "launchPackage", {"package": PACKAGE}))
        self.launch_intents()
        self.assertEqual(self.bus("forceStopApp", "s", PACKAGE), "")
        self.expect(("activity", self.codes["stop"], "forceStopPackage", {"package": PACKAGE}))
        self.assertEqual(self.device.runtime("windows")["windows"], ["com.android.settings"])

    def launch_intents(self):
        self.assertEqual(self.bus(
            "launchIntent", "ssssssa{sv}", "android.intent.action.MAIN", "/home/handset/a b.txt",
            "text/plain", PACKAGE, MAIN, "android.intent.category.LAUNCHER", "6",
            "bool", "b", "true", "double", "d", "2.5", "int", "i", "-5", "long", "x",
            "9007199254740993", "text", "s", "Grüße", "uint", "u", "7"), "")
        self.expect_start(
            intent(self.sdk, "android.intent.action.MAIN", flags=0x10004000, package=PACKAGE,
                   data="file:///storage/8ff87de4-0b37-4799-b09a-82773e869e07/a b.txt",
                   type="text/plain", component={"package": PACKAGE, "class": MAIN},
                   categories=["android.intent.category.LAUNCHER"],
                   extras={"bool": {"type": "boolean", "value": True},
                           "double": {"type": "double", "value": 2.5},
                           "int": {"type": "int", "value": -5},
                           "long": {"type": "long", "value": "9007199254740993"},
                           "text": {"type": "string", "value": "Grüße"},
                           "uint": {"type": "int", "value": 7}}),
            ("SurfaceFlinger", 103, "hasWindow", {"package": PACKAGE}))
        # Nothing but an action and a place: no component, and no window to wait for.
        self.assertEqual(self.bus("launchIntent", "ssssssa{sv}", "android.intent.action.VIEW",
                                  "geo:1,2", "", "", "ignored.Class", "", "0"), "")
        self.expect_start(intent(self.sdk, "android.intent.action.VIEW", data="geo:1,2"))

    def expect_start(self, record, *more):
        self.expect(("activity", self.codes["start"], "startActivity", start(record)), *more)

    def manage_the_app(self):
        sizes = ("storagestats", self.codes["sizes"], "queryStatsForPackage",
                 {"volume": None, "package": PACKAGE, "callingPackage": None})
        size = len(apps.MAPS.apk())
        self.assertEqual(self.bus("getAppSize", "s", PACKAGE), f"(xxx) {size} 0 0")
        self.expect(sizes)
        self.assertEqual(self.bus("deleteAppCacheFiles", "s", PACKAGE), "")
        self.expect(("package", self.codes["cache"], "deleteApplicationCacheFilesAsUser",
                     {"package": PACKAGE, "observer": None}))
        self.assertEqual(self.bus("clearAppUserData", "s", PACKAGE), "")
        self.expect(("package", self.codes["data"], "clearApplicationUserData",
                     {"package": PACKAGE, "observer": None}))
        asked = ("deviceidle", self.codes["whitelisted"], "isPowerSaveWhitelistApp",
                 {"package": PACKAGE})
        for allowed, code, method in (("true", 1, "addPowerSaveWhitelistApp"),
                                      ("false", 2, "removePowerSaveWhitelistApp")):
            self.assertEqual(self.bus("setAppStartOnBootup", "sb", PACKAGE, allowed), "")
            self.assertEqual(self.bus("getAppStartOnBootup", "s", PACKAGE), f"b {allowed}")
            self.expect(asked, ("deviceidle", code, method, {"package": PACKAGE}), asked, asked)

    def ask_what_needs_no_android(self):
        self.assertEqual(self.bus("isRunning"), "b false")
        self.assertEqual(self.bus("notifyRuntimeUpgrade", "b", "true"), "")
        self.device.machine.run("mkdir", "-p", f"{device.APP_DATA}/x")
        usage = self.device.machine.run("du", "-sxb", f"{device.APP_DATA}/").split()[0]
        self.assertEqual(self.bus("getAndroidAppDataUsage"), f"t {usage}")
        self.expect()

    def remove_the_app(self):
        self.assertEqual(self.bus("removeFile", "s", PACKAGE), "b true")
        found = self.device.wait_event("delete")
        self.assertEqual((found["package"], found["returnCode"], found["observed"]),
                         (PACKAGE, 1, False))
        self.expect(("package", self.codes["delete"], "deletePackageAsUser",
                     {"package": PACKAGE, "version": -1, "observer": None, "flags": 2}))
        self.assert_files()
        self.assertEqual(self.bus("controlService", "b", "false"), "")
        self.device.wait_state(device.RUNTIME, "inactive")
        self.assert_notified(("App installed: Maps", ""))

    def test_everyMethodAtLevel27(self):
        self.run_level(27)

    def test_everyMethodAtLevel28(self):
        self.run_level(28)

    def test_everyMethodAtLevel29(self):
        self.run_level(29)
