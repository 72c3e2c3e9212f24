# SPDX-License-Identifier: BSD-3-Clause
"""Apks on their way into Android and out of it, and what the user is told."""

import apps
import device
from appscenario import DOWNLOADS, AppScenario, entry_path, runtime_path
from wrappedapk import WrappedApk


class Install(AppScenario):
    def test_anInstallWhileTheRuntimeIsStoppedStartsItAndIsCarriedOut(self):
        path = self.put_apk(apps.MAPS)
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.device.wait_state(device.RUNTIME, "active")
        self.wait_installed(apps.MAPS)
        self.assert_files(apps.MAPS.files())
        self.assert_notified(("App installed: Maps", ""))
        installs = [call for call in self.device.calls("alien")]
        self.assertEqual([call["arguments"]["path"] for call in installs],
                         [runtime_path(apps.MAPS)])
        staged = f"{device.INCOMING}/{apps.MAPS.package}.apk"
        self.assertEqual(self.device.machine.run("stat", "--format=%U %G %a", staged).strip(),
                         "root root 644")
        self.assertEqual(self.device.machine.run("cat", staged), apps.MAPS.apk())

    def test_requestsOfAStoppedRuntimeAreCarriedOutOnceEachAndInOrder(self):
        self.device.configure_runtime(readyDelay=8000)
        maps, notes = self.put_apk(apps.MAPS), self.put_apk(apps.NOTES)
        for path in (maps, notes, maps):
            self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.assertEqual(self.bus("removeFile", "s", apps.STORE.package), "b true")
        self.assertEqual(self.device.state(device.RUNTIME), "activating")
        self.device.wait_event("delete", f"package={apps.STORE.package}", "returnCode=-1")
        self.assertEqual([(call["service"], call["arguments"].get("path"),
                           call["arguments"].get("package"))
                          for call in self.device.calls("alien", "package")],
                         [("alien", runtime_path(apps.MAPS), None),
                          ("alien", runtime_path(apps.NOTES), None),
                          ("package", None, apps.STORE.package)])
        self.wait_installed(apps.NOTES)
        self.assert_files(apps.MAPS.files(), apps.NOTES.files())
        self.expected_warnings = ["File already exists in incoming folder: "
                                  f'"{device.INCOMING}/{apps.MAPS.package}.apk"']
        self.assert_notified(("App installed: Maps", ""), ("App installed: Notizbücher", ""))

    def test_anApkThatAndroidRefusesWithWordsIsToldOfInThem(self):
        self.device.start_runtime()
        path = self.put_apk(apps.MAPS, fail=-25, message="Version 4.2 is older than 5.0")
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.assert_notified(
            (f"App could not be installed: {apps.MAPS.package}", "Version 4.2 is older than 5.0"))
        self.assert_files()

    def test_anApkThatAndroidRefusesWithoutWordsIsToldOfInOurs(self):
        self.device.start_runtime()
        path = self.put_apk(apps.MAPS, fail=-4)
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.assert_notified((f"App could not be installed: {apps.MAPS.package}",
                              "There is not enough storage space"))
        self.assert_files()

    def test_aFileThatIsNoApkIsRefusedByAndroid(self):
        self.device.start_runtime()
        path = f"{DOWNLOADS}/letter.apk"
        self.device.write({path: "Dear Sir or Madam"})
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.assert_notified(("App could not be installed",
                              f"Failed to parse {device.RUNTIME_INCOMING}/letter.apk"))

    def test_aFileThatDoesNotExistIsRefusedAtOnceAndStartsNothing(self):
        self.assertEqual(self.bus("installFile", "s", "/no/such.apk"), "b false")
        self.assertEqual(self.device.state(device.RUNTIME), "inactive")
        self.expected_warnings = ['File does not exist: "/no/such.apk"']

    def test_anOrdinaryUserIsRefusedUnlessThePolicyAllows(self):
        self.device.start_runtime()
        path = self.put_apk(apps.MAPS)
        self.assertEqual(self.bus("installFile", "s", path, user="handset"), "b false")
        self.assertEqual(self.bus("removeFile", "s", path, user="handset"), "b false")
        self.expected_warnings = ["APK installation prohibited", "APK uninstallation prohibited"]
        self.assert_notified(("", "Installing Android apps is not allowed on this device"),
                             ("", "Removing Android apps is not allowed on this device"))
        warning = self.session.notifications()[0]
        self.assertEqual(warning["hints"], {"transient": True, "urgency": 2,
                                            "image-path": "icon-lock-warning"})
        self.assertEqual(self.device.calls("alien", "package"), [])
        self.device.write({device.POLICY: "[policy]\n6=true\n"})
        self.assertEqual(self.bus("installFile", "s", path, user="handset"), "b true")
        self.wait_installed(apps.MAPS)
        self.assert_files(apps.MAPS.files())

    def test_aMemberOfTheGroupDiskMayInstall(self):
        self.device.start_runtime()
        path = self.put_apk(apps.MAPS)
        result = self.device.machine.shell(
            f"setpriv --reuid=handset --regid=disk --init-groups busctl call {device.BUS_NAME} "
            f"{device.OBJECT_PATH} {device.BUS_NAME} installFile s {path}")
        self.assertEqual(result.stdout, "b true\n")
        self.wait_installed(apps.MAPS)

    def test_aPartnerSpaceAppIsMarkedAndHidden(self):
        self.device.start_runtime()
        self.assertEqual(self.bus("installPartnerSpaceFile", "s", self.put_apk(apps.STORE)),
                         "b true")
        self.wait_installed(apps.STORE)
        self.assert_files(apps.STORE.files(partner_space=True))
        self.assertEqual(self.device.machine.run("ls", device.MARKERS),
                         f"{apps.STORE.package}.apk\n")
        self.assertEqual(self.bus("removeFile", "s", f"{apps.STORE.package}.apk"), "b true")
        self.device.wait_event("delete")
        self.assertEqual(self.device.machine.run("ls", device.MARKERS), "")
        self.assertEqual(self.session.notifications(), [])

    def test_anAppIsRemovedByItsDesktopEntry(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        self.assertEqual(self.bus("removeFile", "s", entry_path(apps.NOTES)), "b true")
        self.device.wait_event("delete", f"package={apps.NOTES.package}", "returnCode=1")
        self.assert_files(apps.MAPS.files())
        self.assertEqual(self.session.notifications(), [])

    def test_anAppThatCameInAPackageIsInstalledSilentlyAndTakesItsPackageAlong(self):
        self.device.start_runtime()
        package = WrappedApk(self.device, apps.KEYBOARD)
        self.addCleanup(package.purge)
        package.install()
        self.assertEqual(self.bus("installFile", "s", package.apk), "b true")
        self.wait_installed(apps.KEYBOARD)
        self.assertTrue(package.is_installed())
        self.assertEqual(self.bus("removeFile", "s", package.apk), "b true")
        self.device.wait_event("delete", f"package={apps.KEYBOARD.package}", "returnCode=1")
        self.device.wait(lambda: not package.is_installed(), f"{package.name} is removed")
        self.assertNotEqual(
            self.device.machine.shell(f"ls {package.apk}", check=False).returncode, 0)
        self.assert_files()
        self.assertEqual(self.session.notifications(), [])
