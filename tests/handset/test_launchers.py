# SPDX-License-Identifier: BSD-3-Clause
"""Launchers that the runtime announces, and the files that they become."""

import dataclasses

import apps
import device
from scenario import Scenario

MAPS_NAME = "lumd_launcher_com_example_maps-com_example_maps_Main"
MAPS_ICON = f"{apps.ICONS}/{MAPS_NAME}.png"
MAPS_SETTINGS = f"{apps.SETTINGS}/{MAPS_NAME}.json"
STORE_ENTRY = (f"{apps.APPLICATIONS}/lumd_launcher_com_example_store-"
               "com_example_store_Front.desktop")


def with_launcher(app, **changes):
    """The app with its first launcher changed."""
    first, *others = app.launchers
    return dataclasses.replace(
        app, launchers=(dataclasses.replace(first, **changes), *others))


class Launchers(Scenario):
    def hide(self, *packages):
        """Puts packages on the blacklist, which the daemon reads when it starts."""
        self.device.write({device.BLACKLIST: "".join(f"{name}\n" for name in packages)})
        self.device.stop(device.LUMD)
        self.device.start(device.LUMD)

    def mark(self, package):
        """Gives a package its partner-space marker."""
        self.device.write({f"{device.MARKERS}/{package}.apk": ""})

    def test_everyLauncherGetsItsEntryIconAndSettingsPage(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        self.assert_files(apps.MAPS.files(), apps.NOTES.files())

    def test_theEntriesAreValid(self):
        self.device.install(apps.MAPS, apps.NOTES, apps.KEYBOARD)
        self.hide(apps.KEYBOARD.package)
        self.device.start_runtime()
        verdict = self.device.validate()
        self.assertEqual((verdict.returncode, verdict.stdout, verdict.stderr), (0, "", ""))

    def test_anAppOnTheBlacklistIsHidden(self):
        self.device.install(apps.MAPS, apps.KEYBOARD)
        self.hide(apps.KEYBOARD.package)
        self.device.start_runtime()
        self.assert_files(apps.MAPS.files(), apps.KEYBOARD.files(hidden=True))

    def test_aPartnerSpaceAppIsHiddenAndGetsItsCategory(self):
        self.device.install(apps.STORE)
        self.mark(apps.STORE.package)
        self.device.start_runtime()
        self.assert_files(apps.STORE.files(partner_space=True))

    def test_anAppOnTheBlacklistAndInThePartnerSpaceIsBoth(self):
        self.device.install(apps.STORE)
        self.mark(apps.STORE.package)
        self.hide(apps.STORE.package)
        self.device.start_runtime()
        self.assert_files(apps.STORE.files(hidden=True, partner_space=True))

    def test_nothingIsRewrittenWhenNothingChanged(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        before = self.device.files()
        self.device.announce(apps.MAPS)
        self.device.announce(apps.NOTES)
        self.device.runtime("complete")
        self.assert_rewritten(before)

    def test_theEntryOfAPartnerSpaceAppIsRewrittenEachTime(self):
        self.device.install(apps.STORE)
        self.mark(apps.STORE.package)
        self.device.start_runtime()
        before = self.device.files()
        self.device.announce(apps.STORE)
        self.assert_rewritten(before, STORE_ENTRY)
        self.assert_files(apps.STORE.files(partner_space=True))

    def test_aNewIconReplacesTheIconAlone(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        before = self.device.files()
        changed = with_launcher(apps.MAPS, icon=apps.icon(200, 30, 30))
        self.device.announce(changed)
        self.assert_rewritten(before, MAPS_ICON)
        self.assert_files(changed.files())

    def test_aNewVersionReplacesTheSettingsPagesAlone(self):
        self.device.install(apps.NOTES)
        self.device.start_runtime()
        before = self.device.files()
        changed = dataclasses.replace(apps.NOTES, version="1.0.8")
        self.device.announce(changed)
        self.assert_rewritten(before, *[path for path in before if path.endswith(".json")])
        self.assert_files(changed.files())

    def test_aLargeIconArrivesWhole(self):
        # Incompressible, and near the most that a binder transaction carries.
        noise = bytes((index * index + index // 256) % 251 for index in range(700 * 1024))
        app = with_launcher(apps.NOTES, icon=noise)
        self.device.install(app)
        self.device.start_runtime()
        self.assert_files(app.files())

    def test_aLauncherWithoutCaptionGetsNoFiles(self):
        nameless = with_launcher(apps.NOTES, caption="")
        self.device.install(apps.MAPS, nameless)
        self.device.start_runtime()
        self.assert_files(apps.MAPS.files())
        (entry,) = [path for path in apps.NOTES.files() if path.endswith(".desktop")]
        self.expected_warnings = [
            f'Not creating launcher for  "{entry}" , as it has no caption']

    def test_aRemovedAppTakesAllOfItsFilesAlong(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        self.device.runtime("remove", apps.MAPS.package)
        self.assert_files(apps.NOTES.files())

    def test_anUnknownTransactionIsRefusedAndChangesNothing(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        before = self.device.files()
        answer = self.device.runtime("send-raw", "4")
        # lumd's status 1 is no error of binder's: libgbinder sends -EFAULT for it.
        self.assertEqual([call["status"] for call in answer["calls"]], [-14])
        self.assert_rewritten(before)

    def test_entriesOfAnEarlierRunGoWhenTheListIsComplete(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        self.device.stop(device.RUNTIME)
        self.device.stop(device.LUMD)
        self.device.forget(apps.MAPS)
        self.device.start(device.LUMD)
        self.assert_files(apps.MAPS.files(), apps.NOTES.files())
        self.device.start_runtime()
        self.assert_files(apps.NOTES.files())

    def test_entriesOfTheSameRunStayWhenTheRuntimeComesBackWithoutTheApp(self):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.start_runtime()
        self.device.stop(device.RUNTIME)
        self.device.forget(apps.MAPS)
        self.device.start_runtime()
        self.assert_files(apps.MAPS.files(), apps.NOTES.files())

    def test_entriesOfOthersAreLeftAlone(self):
        foreign = f"{apps.APPLICATIONS}/org.example.editor.desktop"
        self.device.write({foreign: "[Desktop Entry]\n"})
        self.addCleanup(self.device.machine.run, "rm", foreign)
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.assertEqual(self.device.machine.run("cat", foreign), "[Desktop Entry]\n")
