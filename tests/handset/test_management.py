# SPDX-License-Identifier: BSD-3-Clause
"""Sizes, data, start on boot, the time zone, and upgrades of the runtime."""

import json

import apps
import device
from appscenario import AppScenario

PACKAGE = apps.MAPS.package


class Management(AppScenario):
    def install_with(self, **values):
        """Makes an app known to the runtime with sizes of its own, and starts that."""
        self.device.write({f"{device.RUNTIME_APPS}/{PACKAGE}.json":
                           json.dumps({**json.loads(apps.MAPS.to_json()), **values})})
        self.device.start_runtime()

    def size(self):
        return self.bus("getAppSize", "s", PACKAGE)

    def test_theSizesFollowWhatIsCleared(self):
        big = 3 << 33
        self.install_with(codeBytes=big, dataBytes=700, cacheBytes=200)
        self.assertEqual(self.size(), f"(xxx) {big} 500 200")
        self.bus("deleteAppCacheFiles", "s", PACKAGE)
        self.device.wait_event("clear", "what=cache", f"package={PACKAGE}")
        self.assertEqual(self.size(), f"(xxx) {big} 500 0")
        self.bus("clearAppUserData", "s", PACKAGE)
        self.device.wait_event("clear", "what=data", f"package={PACKAGE}")
        self.assertEqual(self.size(), f"(xxx) {big} 0 0")

    def test_theSizesLagBehindWhatIsCleared(self):
        self.install_with(codeBytes=1, dataBytes=700, cacheBytes=200)
        self.device.runtime("clear-delay", "20000")
        self.bus("clearAppUserData", "s", PACKAGE)
        self.assertEqual(self.size(), "(xxx) 1 500 200")

    def test_anAppWhoseDataIsClearedLosesItsWindow(self):
        self.install_with()
        self.bus("launchApp", "s", PACKAGE)
        self.bus("clearAppUserData", "s", PACKAGE)
        self.device.wait_event("clear", "what=data", f"package={PACKAGE}")
        self.assertEqual(self.device.runtime("windows")["windows"], [])

    def test_theSizesOfAnUnknownAppAreTheFirstLettersOfAndroidsException(self):
        self.device.start_runtime()
        letters = [int.from_bytes(part.encode("utf-16-le"), "little")
                   for part in ("andr", "oid.", "cont")]
        code, data, cache = letters
        self.assertEqual(self.size(), f"(xxx) {code} {data - cache} {cache}")

    def test_sizesThatAndroidRefusesAreMinusOne(self):
        self.install_with(codeBytes=1)
        self.device.runtime("fail-next", "storagestats", "--status", "-32")
        self.assertEqual(self.size(), "(xxx) -1 0 -1")
        (warning,) = [line.text for line in self.device.log(priority="warning")]
        self.assertTrue(warning.startswith("Error requesting package stats: "), warning)
        self.expected_warnings = [warning]

    def test_aStoppedRuntimeAnswersNothingAndIsNotStarted(self):
        self.assertEqual(self.size(), "(xxx) 0 0 0")
        self.assertEqual(self.bus("getAppStartOnBootup", "s", PACKAGE), "b false")
        for method in ("deleteAppCacheFiles", "clearAppUserData", "forceStopApp"):
            self.assertEqual(self.bus(method, "s", PACKAGE), "")
        self.assertEqual(self.device.state(device.RUNTIME), "inactive")

    def test_startOnBootIsSignalledWhenItReallyChanges(self):
        self.install_with()
        self.session.watch_signals()
        for allowed in ("true", "true", "false", "false"):
            self.bus("setAppStartOnBootup", "sb", PACKAGE, allowed)
            self.assertEqual(self.bus("getAppStartOnBootup", "s", PACKAGE), f"b {allowed}")
        self.bus("setAppStartOnBootup", "sb", "not.installed", "true")
        self.bus("setAppStartOnBootup", "sb", PACKAGE, "true")
        expected = [["appStartOnBootupChanged", PACKAGE, allowed]
                    for allowed in (True, False, True)]
        self.device.wait(lambda: len(self.session.signals()) >= len(expected), "the signals")
        self.assertEqual(self.session.signals(), expected)
        whitelisted = self.device.runtime("apps")["apps"][PACKAGE]["powerSaveWhitelisted"]
        self.assertTrue(whitelisted)

    def test_dataOfAllAppsIsCounted(self):
        folder = f"{device.APP_DATA}/{PACKAGE}"
        self.device.write({f"{folder}/one": "x" * 1000, f"{folder}/two": "y" * 234})
        # Some releases' du counts the folders too, others do not.
        total = int(self.device.machine.run("du", "-sxb", device.APP_DATA).split()[0])
        self.assertGreaterEqual(total, 1234)
        self.assertEqual(self.bus("getAndroidAppDataUsage"), f"t {total}")

    def test_noDataAtAllIsWarnedOf(self):
        self.device.machine.run("rm", "-rf", device.APP_DATA)
        self.assertEqual(self.bus("getAndroidAppDataUsage"), "t 0")
        self.expected_warnings = ["Could not determine android app data usage"]

    def zone(self):
        return self.device.runtime("timezone")["timezone"]

    def test_theTimeZoneReachesAndroidAtOnceAndAtEveryStart(self):
        before = self.device.machine.run("timedatectl", "show", "--property=Timezone",
                                         "--value").strip()
        self.addCleanup(self.device.machine.run, "timedatectl", "set-timezone", before)
        self.device.start_runtime()
        self.device.wait(lambda: self.zone() == before, f"the zone is {before}")
        self.device.machine.run("timedatectl", "set-timezone", "Asia/Tokyo")
        self.device.wait(lambda: self.zone() == "Asia/Tokyo", "the zone is Asia/Tokyo")
        self.device.stop(device.RUNTIME)
        self.device.machine.run("timedatectl", "set-timezone", "America/Lima")
        self.device.start_runtime()
        self.device.wait(lambda: self.zone() == "America/Lima", "the zone is America/Lima")
        self.assert_calls(self.device.calls("alarm"),
                          ("alarm", 3, "setTimeZone", {"zone": "America/Lima"}))

    def test_theHomeScreenIsToldOfAnUpgradeOfTheRuntime(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.session.start_home_screen()
        self.addCleanup(self.session.reset)
        self.bus("notifyRuntimeUpgrade", "b", "true")
        self.bus("notifyRuntimeUpgrade", "b", "false")
        names = [apps.base_name(PACKAGE, launcher.class_name)
                 for launcher in apps.MAPS.launchers]
        calls = self.session.home_screen_calls()
        self.assertEqual(sorted(calls[:2]), sorted(
            ["updatingStarted", name, "", "", f"{apps.APPLICATIONS}/{name}.desktop"]
            for name in names))
        self.assertEqual(sorted(calls[2:]), sorted(["updatingFinished", name] for name in names))

    def test_anAppThatIsForcedToStopLosesItsWindow(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        for app in (apps.MAPS, apps.NOTES):
            self.bus("launchApp", "s", app.package)
        self.bus("forceStopApp", "s", PACKAGE)
        self.assertEqual(self.device.runtime("windows")["windows"], [apps.NOTES.package])
