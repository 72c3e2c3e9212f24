# SPDX-License-Identifier: BSD-3-Clause
"""The demo's chapter of launchers: from boot to the files that the session reads."""

import dataclasses

import apps
import device
import packages
from demosteps import Steps

ALL_APPS = (apps.MAPS, apps.NOTES, apps.KEYBOARD, apps.STORE)
MAPS_RED = dataclasses.replace(apps.MAPS, launchers=(
    dataclasses.replace(apps.MAPS.launchers[0], icon=apps.icon(200, 30, 30)),
    *apps.MAPS.launchers[1:]))


class LauncherSteps(Steps):
    """Launchers are announced, change and go."""

    def __init__(self, handset):
        super().__init__(handset)
        self.steps = [self.install, self.start_runtime, self.announce, self.look_inside,
                      self.change_icon, self.remove, self.drop_stale, self.crash,
                      self.read_log]

    def install(self):
        """A handset without lumd boots, and lumd is installed on it by apt"""
        wanted = packages.build(say=self.show)
        seconds = self.machine.boot()
        self.show(f"up after {seconds:.1f} s")
        self.show("$ apt-get install " + " ".join(f"./{path.name}" for path in wanted))
        self.show("\n".join(line for line in self.machine.install(wanted).splitlines()
                            if line.startswith("Setting up ")))
        self.device.wait_state(device.LUMD, "active")
        self.device.reset()
        self.show(self.machine.run("ls", "-l", "/dev/puddlejumper").strip())
        self.show(self.machine.run("loginctl", "list-sessions", "--no-legend").strip())
        owner = self.device.owner()
        self.check(owner, f"nobody owns {device.BUS_NAME}")
        self.show(f"{device.BUS_NAME} is on the system bus, process {owner}")

    def start_runtime(self):
        """The Android runtime is started by lumctl, and lumd follows its unit"""
        self.device.write({device.BLACKLIST: f"{apps.KEYBOARD.package}\n",
                           f"{device.MARKERS}/{apps.STORE.package}.apk": ""})
        self.device.configure_runtime(readyDelay=1000)
        self.device.install(*ALL_APPS)
        self.device.stop(device.LUMD)
        self.device.start(device.LUMD)
        self.expect(self.lumctl("runtime", "start"), "The Android runtime is active")
        self.expect_states("inactive", "activating", "active")

    def announce(self):
        """Launchers are announced; entries, icons and settings pages appear"""
        self.device.wait_announced()
        files = self.check_files(
            apps.MAPS.files(), apps.NOTES.files(), apps.KEYBOARD.files(hidden=True),
            apps.STORE.files(partner_space=True))
        listed = self.lumctl("list").splitlines()
        self.expect(sorted(listed), sorted(
            f"{app.package}\t{app.version}\t{launcher.caption}"
            for app in ALL_APPS for launcher in app.launchers))
        for app, remark in ((apps.MAPS, "two launchers"), (apps.NOTES, "one launcher"),
                            (apps.KEYBOARD, "on the blacklist"),
                            (apps.STORE, "in the partner space")):
            self.show(f"{app.package}: {remark}")
            for path in sorted(app.files()):
                self.show(f"  {len(files[path].data):5} bytes  {path}")

    def look_inside(self):
        """The files of one launcher, and the verdict of desktop-file-validate on all"""
        for path in sorted(apps.STORE.files()):
            if not path.endswith(".png"):
                self.show(f"{path}:")
                self.show(self.machine.run("cat", path))
        verdict = self.device.validate()
        self.show("desktop-file-validate: "
                  + (verdict.stdout + verdict.stderr or "no complaint").strip())
        self.check(verdict.returncode == 0, "an entry is not valid")

    def change_icon(self):
        """An app comes with a new icon: that file alone is replaced"""
        before = self.device.files()
        self.device.announce(MAPS_RED)
        now = self.device.files()
        for path in sorted(apps.MAPS.files()):
            word = "kept    " if now[path] == before[path] else "replaced"
            self.show(f"{word}  inode {now[path].inode}  {path}")
        changed = [path for path in now if now[path] != before.get(path)]
        icons = [path for path, data in MAPS_RED.files().items()
                 if data != apps.MAPS.files()[path]]
        self.check(changed == icons, f"replaced: {changed}, and should be: {icons}")

    def remove(self):
        """An app is removed from the runtime: its files go"""
        self.device.runtime("remove", apps.NOTES.package)
        self.check_files(MAPS_RED.files(), apps.KEYBOARD.files(hidden=True),
                         apps.STORE.files(partner_space=True))
        for path in sorted(apps.NOTES.files()):
            self.show(f"gone  {path}")

    def drop_stale(self):
        """Both restart, and an app has vanished meanwhile: its stale files go"""
        self.device.stop(device.RUNTIME)
        self.device.stop(device.LUMD)
        self.device.forget(apps.KEYBOARD)
        self.device.start(device.LUMD)
        self.check_files(MAPS_RED.files(), apps.KEYBOARD.files(hidden=True),
                         apps.STORE.files(partner_space=True))
        self.show("before the runtime has told its list, every entry is still there")
        self.device.start_runtime()
        self.check_files(MAPS_RED.files(), apps.STORE.files(partner_space=True))
        for path in sorted(apps.KEYBOARD.files()):
            self.show(f"gone  {path}")

    def crash(self):
        """The runtime is killed, is seen as failed, and comes back"""
        self.device.kill(device.RUNTIME)
        self.expect_states("failed")
        self.device.start_runtime()
        self.expect_states("failed", "activating", "active")
        self.check_files(MAPS_RED.files(), apps.STORE.files(partner_space=True))

    def read_log(self):
        """Neither log holds a complaint, but for the links that the kill broke"""
        self.no_complaint()
