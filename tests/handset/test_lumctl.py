# SPDX-License-Identifier: BSD-3-Clause
"""What a person types: lumctl, as it is installed."""

import json
import shlex

import apps
import device
from appscenario import DOWNLOADS, AppScenario

PACKAGE = apps.MAPS.package


class Lumctl(AppScenario):
    def lumctl(self, *arguments, code=0, user="root"):
        """Runs it; gives what it printed, both ways."""
        command = ["lumctl", *arguments]
        if user != "root":
            command = ["setpriv", f"--reuid={user}", f"--regid={user}", "--init-groups", *command]
        result = self.device.machine.shell(f"{shlex.join(command)} 2>&1", check=False)
        self.assertEqual(result.returncode, code, result.stdout)
        return result.stdout.strip()

    def test_aGoodApkIsInstalledStartedLookedAtAndRemoved(self):
        path = self.put_apk(apps.MAPS, codeBytes=3_000_000, dataBytes=700, cacheBytes=200)
        self.assertEqual(self.lumctl("install", path), "\n".join((
            f"{path}: waits until the Android runtime is up",
            f"{path}: installed as {PACKAGE}")))
        self.device.wait(lambda: len(self.device.files()) == len(apps.MAPS.files()),
                         "the launchers are there")
        self.assertEqual(sorted(self.lumctl("list").splitlines()),
                         [f"{PACKAGE}\t4.2\tMaps", f"{PACKAGE}\t4.2\tNavigation"])
        self.assertEqual(self.lumctl("launch", "Maps"), "Starting Maps")
        self.assertEqual(self.device.runtime("windows")["windows"], [PACKAGE])
        shown = json.loads(self.lumctl("info", "maps", "--json"))
        self.assertEqual(shown["size"], {"code": 3_000_000, "data": 500, "cache": 200})
        self.assertIs(shown["startOnBoot"], False)
        self.assertEqual(self.lumctl("remove", "navigation"), f"{shown['name']}: removed")
        self.device.wait(lambda: not self.device.files(), "the launchers are gone")
        self.assertEqual(self.lumctl("info", "Maps", code=6), "lumctl: No app is called “Maps”")

    def test_aBadApkIsToldOfInAndroidsWords(self):
        self.device.start_runtime()
        path = self.put_apk(apps.MAPS, fail=-25, message="Version 4.2 is older than 5.0")
        self.assertEqual(self.lumctl("install", path, code=1),
                         f"lumctl: {path}: not installed: Version 4.2 is older than 5.0")
        result = json.loads(self.lumctl("install", path, "--json", code=1))["results"]
        self.assertEqual([one["result"] for one in result], ["failed"])
        self.expected_warnings = ["File already exists in incoming folder: "
                                  f'"{device.INCOMING}/{PACKAGE}.apk"']

    def test_anOrdinaryUserMayNotInstallAndIsToldSo(self):
        self.device.start_runtime()
        path = self.put_apk(apps.MAPS)
        told = self.lumctl("install", path, code=4, user="handset")
        self.assertTrue(told.startswith(f"lumctl: {path}: lumd did not take the file"), told)
        self.expected_warnings = ["APK installation prohibited"]

    def test_whatAnAppIsAskedForReachesAndroid(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.lumctl("launch", PACKAGE)
        self.lumctl("stop", "Maps")
        self.assertEqual(self.device.runtime("windows")["windows"], [])
        self.lumctl("clear-cache", "Maps")
        self.device.wait_event("clear", "what=cache", f"package={PACKAGE}")
        self.lumctl("clear-data", "Maps", code=2)
        self.lumctl("clear-data", "Maps", "--yes")
        self.device.wait_event("clear", "what=data", f"package={PACKAGE}")
        self.assertEqual(self.lumctl("autostart", "Maps", "on"), "Maps: starts on boot")
        self.assertEqual(self.lumctl("autostart", "Maps", "off"), "Maps: does not start on boot")
        self.lumctl("settings", "Maps")
        self.lumctl("licences")
        self.lumctl("open", "https://a.example/")
        self.device.write({f"{DOWNLOADS}/page.html": "<html></html>"})
        self.lumctl("open", f"{DOWNLOADS}/page.html")
        self.lumctl("intent", "--action", "com.a.DO", "--extra", "int:page=3")
        records = [call["arguments"]["intent"] for call in self.device.calls("activity")
                   if call["method"] == "startActivity"]
        self.assertEqual([record["action"] for record in records],
                         ["android.settings.APPLICATION_DETAILS_SETTINGS",
                          "android.settings.LEGAL_INFO", "android.intent.action.VIEW",
                          "android.intent.action.VIEW", "com.a.DO"])
        self.assertEqual(records[3]["type"], "text/html")
        self.assertTrue(records[4]["extras"])

    def test_theRuntimeIsStartedAndStopped(self):
        self.assertEqual(self.lumctl("runtime", "start"), "The Android runtime is active")
        self.assertEqual(self.device.state(device.RUNTIME), "active")
        status = json.loads(self.lumctl("status", "--json"))
        self.assertEqual((status["runtimeState"], status["sdkLevel"]), ("active", 29))
        self.assertEqual(self.lumctl("runtime", "stop"), "The Android runtime is inactive")
        for word, enabled in (("enable", True), ("disable", False)):
            self.lumctl("runtime", word)
            self.device.wait(lambda enabled=enabled: json.loads(self.lumctl(
                "runtime", "status", "--json"))["startOnBoot"] is enabled, f"it is {word}d")

    def test_eventsAreFollowed(self):
        self.device.start_runtime()
        self.device.machine.shell(
            "systemd-run --quiet --service-type=exec --unit=follower "
            "--property=StandardOutput=file:/run/events "
            "lumctl monitor --json")
        self.addCleanup(self.device.machine.shell, "systemctl stop follower; rm -f /run/events",
                        check=False)

        def events():
            return [json.loads(line) for line in
                    self.device.machine.run("cat", "/run/events").splitlines()]

        self.device.wait(lambda: events(), "the first event")
        self.lumctl("install", self.put_apk(apps.NOTES))
        self.device.wait(lambda: {"event": "InstallFinished", "package": apps.NOTES.package,
                                  "success": True, "message": ""} in events(), "the result")

    def test_aLoginShellCompletesNames(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        typed = "COMP_WORDS=(lumctl launch n) COMP_CWORD=2; _lumctl; echo ${COMPREPLY[@]}"
        self.assertEqual(self.device.machine.run("bash", "-lc", typed), "Navigation\n")

    def test_aDaemonThatIsNotThereIsTold(self):
        self.device.stop(device.LUMD)
        self.assertEqual(self.lumctl("status", code=3), "lumctl: lumd is not running")
