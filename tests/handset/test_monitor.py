# SPDX-License-Identifier: BSD-3-Clause
"""What programs hear of apps and of the runtime."""

import dataclasses
import json

import apps
import device
from appscenario import DOWNLOADS, AppScenario, entry_path

OBJECT = f"{device.OBJECT_PATH}/monitor"
INTERFACE = f"{device.BUS_NAME}.Monitor1"
LISTENER = "lumd-listener.service"
HEARD = "/run/lumd-listener.json"


def icon_path(app):
    return f"{apps.ICONS}/{apps.base_name(app.package, app.launchers[0].class_name)}.png"


def changed(app):
    return ("LauncherChanged", entry_path(app), app.package, app.launchers[0].caption,
            icon_path(app))


def gone(app):
    return ("LauncherGone", entry_path(app), app.package)


class Monitor(AppScenario):
    def setUp(self):
        super().setUp()
        self.device.machine.run(
            # It is executed then, and what an earlier one heard is gone.
            "systemd-run", "--quiet", "--collect", "--service-type=exec", f"--unit={LISTENER}",
            f"--property=StandardOutput=truncate:{HEARD}",
            "busctl", "monitor", "--json=short", f"--match=path='{OBJECT}'")
        self.addCleanup(self.device.stop, LISTENER)
        self.device.wait(self.listens, "the listener hears what is sent")

    def listens(self):
        self.device.machine.run("busctl", "emit", OBJECT, "com.tovra.test", "Probe")
        return "Probe" in self.device.machine.run("cat", HEARD)

    def heard(self):
        """The signals so far: each its name and its arguments."""
        lines = [line for line in self.device.machine.run("cat", HEARD).splitlines()
                 if line.endswith("}")]
        messages = [message for message in map(json.loads, lines)
                    if message["type"] == "signal" and message["member"] != "Probe"]
        return [(message["member"], *message["payload"].get("data", []))
                for message in messages]

    def news(self):
        """The same without the properties."""
        return [signal for signal in self.heard() if signal[0] != "PropertiesChanged"]

    def values(self, name):
        """The values of a property that have been told, in order."""
        changes = [signal[2] for signal in self.heard() if signal[0] == "PropertiesChanged"]
        return [change[name]["data"] for change in changes if name in change]

    def wait_news(self, *expected):
        self.device.wait(lambda: len(self.news()) >= len(expected), f"{expected} are told")
        self.assertEqual(self.news(), list(expected))

    def properties(self):
        reply = json.loads(self.device.machine.run(
            "busctl", "--json=short", "call", device.BUS_NAME, OBJECT,
            "org.freedesktop.DBus.Properties", "GetAll", "s", INTERFACE))
        return {name: value["data"] for name, value in reply["data"][0].items()}

    def listed(self):
        reply = json.loads(self.device.machine.run(
            "busctl", "--json=short", "call", device.BUS_NAME, OBJECT, INTERFACE, "ListApps"))
        return reply["data"][0]

    def test_aGoodApkIsInstalledAndRemoved(self):
        path = self.put_apk(apps.NOTES)
        self.device.configure_runtime(readyDelay=3000)
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.assertEqual(self.properties()["PendingChanges"], 1)
        self.device.wait(lambda: ("InstallFinished", apps.NOTES.package, True, "") in self.news(),
                         "the install is finished")
        self.assertEqual(self.news()[0], ("RequestQueued", "install", path))
        self.assertIn(changed(apps.NOTES), self.news())
        self.assertEqual(self.values("PendingChanges"), [1, 0])
        launcher = [entry_path(apps.NOTES), apps.NOTES.launchers[0].caption, icon_path(apps.NOTES),
                    apps.NOTES.version, False]
        self.assertEqual(self.listed(), {apps.NOTES.package: [launcher]})
        before = len(self.news())
        self.assertEqual(self.bus("removeFile", "s", entry_path(apps.NOTES)), "b true")
        self.device.wait(lambda: len(self.news()) >= before + 3, "the removal is finished")
        self.assertEqual(self.news()[before:],
                         [gone(apps.NOTES), ("PackageRemoved", apps.NOTES.package),
                          ("RemoveFinished", apps.NOTES.package, True)])
        self.assertEqual(self.listed(), {})

    def test_aBadApkIsToldOfInTheWordsThatTheUserSees(self):
        self.device.start_runtime()
        self.wait_news(("ListComplete",))
        path = f"{DOWNLOADS}/letter.apk"
        self.device.write({path: "Dear Sir or Madam"})
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        message = f"Failed to parse {device.RUNTIME_INCOMING}/letter.apk"
        self.wait_news(("ListComplete",), ("InstallFinished", "", False, message))
        self.assert_notified(("App could not be installed", message))

    def test_launchersThatComeChangeAndGoAreToldOf(self):
        self.device.install(apps.NOTES)
        self.device.start_runtime()
        self.wait_news(changed(apps.NOTES), ("ListComplete",))
        self.device.announce(apps.NOTES)
        newer = dataclasses.replace(apps.NOTES, version="77")
        self.device.announce(newer)
        self.device.runtime("remove", apps.NOTES.package)
        self.wait_news(changed(apps.NOTES), ("ListComplete",), changed(newer), gone(apps.NOTES),
                       ("PackageRemoved", apps.NOTES.package))

    def test_theRuntimeIsFollowedThroughStartAndStop(self):
        self.assertEqual(self.properties(),
                         {"RuntimeState": "inactive", "Ready": False, "PendingChanges": 0,
                          "PendingLaunches": 0, "SdkLevel": device.androidlevels.DEFAULT_SDK,
                          "Version": self.properties()["Version"]})
        self.device.start_runtime()
        self.device.wait(lambda: self.properties()["Ready"], "lumd is ready")
        self.assertEqual(self.properties()["RuntimeState"], "active")
        self.device.stop(device.RUNTIME)
        self.device.wait(lambda: self.values("RuntimeState")[-1:] == ["inactive"],
                         "lumd sees the runtime down")
        self.assertEqual(self.values("RuntimeState"),
                         ["activating", "active", "deactivating", "inactive"])
        self.assertEqual(self.values("Ready"), [True, False])
