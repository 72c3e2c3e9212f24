# SPDX-License-Identifier: BSD-3-Clause
"""What apt does with the packages on a handset that runs, and with its user at work."""

import apps
import device
from appscenario import AppScenario
from machine import PACKAGES

LUMDS_OWN = ("/etc/lumd /etc/gbinder.d/lumd.conf /usr/share/lumd /var/lib/lumd "
             f"/usr/share/tovra-settings {device.INCOMING}")

# What a lumctl that waits has said, and its exit code.
WAITED = "/run/waited"

# Makes a later version of the package, newer.deb.
MAKE_NEWER = """
    rm -rf newer newer.deb
    dpkg-deb --raw-extract lumd_*.deb newer
    sed -i 's/^Version: .*/&+later/' newer/DEBIAN/control
    dpkg-deb --root-owner-group -Znone --build newer newer.deb
    rm -r newer"""


class Packages(AppScenario):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.bring_back)

    def bring_back(self):
        """The packages are there again, as they were installed first."""
        self.in_packages(
            "dpkg --force-confnew,confmiss,downgrade --install lumd_*.deb lumctl_*.deb 2>&1")

    def in_packages(self, script):
        return self.device.machine.shell(f"cd {PACKAGES} && {script}").stdout

    def apt(self, *words):
        return self.in_packages(
            f"DEBIAN_FRONTEND=noninteractive apt-get --yes {' '.join(words)} 2>&1")

    def test_aRemovalTakesTheLaunchersAndAnInstallBringsThemBack(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.wait_files(apps.MAPS.files())
        self.device.write({device.BLACKLIST: "com.example.hidden\n",
                           f"{device.MARKERS}/{apps.STORE.package}.apk": ""})
        self.apt("remove", "lumd")
        self.assertEqual(self.device.files(), {})
        self.assertIsNone(self.device.owner())
        found = self.device.machine.shell("command -v lumd; command -v lumctl", check=False).stdout
        self.assertEqual(found, "")
        self.assertEqual(self.device.machine.run("cat", device.BLACKLIST), "com.example.hidden\n")
        self.apt("install", "./lumd_*.deb", "./lumctl_*.deb")
        self.wait_files(apps.MAPS.files())
        self.assert_files(apps.MAPS.files())
        self.assertEqual(self.device.machine.run("cat", device.BLACKLIST), "com.example.hidden\n")

    def test_aPurgeLeavesNothingOfLumd(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.wait_files(apps.MAPS.files())
        self.device.write({f"{device.MARKERS}/{apps.STORE.package}.apk": ""})
        self.apt("purge", "lumd", "lumctl")
        left = self.device.machine.shell(
            f"find {LUMDS_OWN} 2>/dev/null; "
            f"find {apps.APPLICATIONS} -name 'lumd*'", check=False).stdout
        self.assertEqual(left, "")
        self.assertEqual(self.device.state(device.LUMD), "inactive")

    def test_anUpgradeRestartsOnceAndLosesNoAnnouncement(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.wait_files(apps.MAPS.files())
        before = self.device.owner()
        self.in_packages(MAKE_NEWER)
        self.apt("install", "./newer.deb")
        self.device.wait(lambda: self.device.owner() not in (None, before), "the new lumd is there")
        self.assertEqual(self.in_packages("dpkg-query --show --showformat '${Version}' lumd")[-6:],
                         "+later")
        self.assert_files(apps.MAPS.files())
        self.device.announce(apps.NOTES)
        self.wait_files(apps.MAPS.files(), apps.NOTES.files())

    def test_anUpgradeTellsWhoWaitsThatItsRequestIsLost(self):
        self.in_packages(MAKE_NEWER)
        # systemd gives up on a start after 90 s.
        self.device.configure_runtime(readyDelay=80000)
        path = self.put_apk(apps.NOTES)
        self.device.machine.shell(
            f"rm -f {WAITED}; systemd-run --quiet --collect --service-type=exec "
            f"sh -c 'lumctl install {path} > {WAITED} 2>&1; echo $? >> {WAITED}'")
        self.addCleanup(self.device.machine.run, "rm", "-f", WAITED)
        self.device.wait(lambda: "waits until" in self.waited(), "lumctl waits")
        self.apt("install", "./newer.deb")
        self.device.wait(lambda: self.waited().endswith("\n3\n"), "lumctl ends with code 3")
        self.assertEqual(self.waited(), "\n".join((
            f"{path}: waits until the Android runtime is up",
            f"lumctl: {path}: lumd has gone before it told the result; "
            "if the request was kept for the runtime, it is lost", "3", "")))
        self.device.wait(self.device.owner, "the new lumd is there")
        self.device.stop(device.RUNTIME)
        self.device.configure_runtime()
        self.assertEqual(self.bus("installFile", "s", path), "b true")
        self.wait_installed(apps.NOTES)
        self.wait_files(apps.NOTES.files())

    def waited(self):
        return self.device.machine.shell(f"cat {WAITED}", check=False).stdout

    def test_anInstallBeforeAnybodyHasLoggedInEndsAndLumdComesWithTheUser(self):
        self.apt("remove", "lumd")
        self.device.end_session()
        self.apt("install", "./lumd_*.deb", "./lumctl_*.deb")
        self.device.wait_state(device.LUMD, "activating")
        self.assertIsNone(self.device.owner())
        self.device.start("getty@tty1.service")
        self.device.wait_state(device.LUMD, "active")
        self.assertIsNotNone(self.device.owner())
