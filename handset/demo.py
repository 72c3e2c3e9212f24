#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Tells on the terminal what lumd does on a handset, and checks each step of it."""

import argparse
import dataclasses
import pathlib
import signal
import sys
import time

import apps
import device
import payload
from image import HandsetError
from machine import Machine

ALL_APPS = (apps.MAPS, apps.NOTES, apps.KEYBOARD, apps.STORE)
MAPS_RED = dataclasses.replace(apps.MAPS, launchers=(
    dataclasses.replace(apps.MAPS.launchers[0], icon=apps.icon(200, 30, 30)),
    *apps.MAPS.launchers[1:]))

FAREWELL = f"""
You are on the handset. Some things to try:
  busctl introspect {device.BUS_NAME} {device.OBJECT_PATH}
  alienctl status
  alienctl announce {apps.MAPS.package}
  ls -l {apps.APPLICATIONS} {apps.ICONS} {apps.SETTINGS}
  journalctl -f -u {device.LUMD} -u {device.RUNTIME}
Leave the shell to stop the handset.
"""


class StepFailed(Exception):
    """What was seen is not what should be."""


class Demo:
    """The steps of the story, in order."""

    def __init__(self, machine, build):
        self.machine = machine
        self.build = build
        self.device = device.Device(machine)
        self.steps = [self.boot, self.start_runtime, self.announce, self.look_inside,
                      self.change_icon, self.remove, self.drop_stale, self.crash,
                      self.read_log]
        self.color = sys.stdout.isatty()

    def tell(self):
        """Runs the steps; gives whether all of them held."""
        for number, step in enumerate(self.steps, 1):
            print(self.paint("1", f"\n[{number}/{len(self.steps)}] {step.__doc__}"), flush=True)
            started = time.monotonic()
            try:
                step()
            except (StepFailed, HandsetError) as error:
                self.show(str(error))
                print(self.paint("1;31", "    FAILED"))
                return False
            print(self.paint("32", f"    ok ({time.monotonic() - started:.1f} s)"), flush=True)
        print(self.paint("1;32", f"\nAll {len(self.steps)} steps hold."))
        return True

    def paint(self, code, text):
        return f"\033[{code}m{text}\033[0m" if self.color else text

    @staticmethod
    def show(text):
        for line in text.splitlines():
            print(f"    {line}", flush=True)

    @staticmethod
    def check(holds, complaint):
        if not holds:
            raise StepFailed(complaint)

    def check_files(self, *groups):
        """The files on the handset are exactly those that the apps give."""
        expected = {path: data for group in groups for path, data in group.items()}
        found = self.device.files()
        problems = [f"missing: {path}" for path in expected if path not in found]
        problems += [f"not expected: {path}" for path in found if path not in expected]
        problems += [f"has other contents: {path}" for path in expected
                     if path in found and found[path].data != expected[path]]
        self.check(not problems, "\n".join(problems))
        return found

    def boot(self):
        """The handset boots"""
        seconds = self.machine.boot(self.build)
        self.device.reset()
        self.show(f"up after {seconds:.1f} s")
        self.show(self.machine.run("ls", "-l", "/dev/puddlejumper").strip())
        self.show(self.machine.run("loginctl", "list-sessions", "--no-legend").strip())
        owner = self.device.owner()
        self.check(owner, f"nobody owns {device.BUS_NAME}")
        self.show(f"{device.BUS_NAME} is on the system bus, process {owner}")

    def start_runtime(self):
        """The Android runtime is started over the bus, and lumd follows its unit"""
        self.device.write({device.BLACKLIST: f"{apps.KEYBOARD.package}\n",
                           f"{device.MARKERS}/{apps.STORE.package}.apk": ""})
        self.device.configure_runtime(readyDelay=1000)
        self.device.install(*ALL_APPS)
        self.device.stop(device.LUMD)
        self.device.start(device.LUMD)
        self.show(f"busctl call {device.BUS_NAME} {device.OBJECT_PATH} {device.BUS_NAME} "
                  "controlService b true")
        self.check(self.device.call("controlService", "b", "true").returncode == 0,
                   "the call failed")
        self.device.wait_state(device.RUNTIME, "active")
        self.expect_states("inactive", "activating", "active")

    def expect_states(self, *states):
        """The last states that lumd was told of are these."""
        self.device.wait(lambda: self.device.seen_states()[-len(states):] == list(states),
                         f"lumd sees {' -> '.join(states)}")
        self.show(f"as lumd sees it: {' -> '.join(states)}")

    def announce(self):
        """Launchers are announced; entries, icons and settings pages appear"""
        self.device.wait_announced()
        files = self.check_files(
            apps.MAPS.files(), apps.NOTES.files(), apps.KEYBOARD.files(hidden=True),
            apps.STORE.files(partner_space=True))
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
        """Neither log holds a complaint"""
        warnings = [line.text for line in self.device.log(priority="warning")]
        self.check(not warnings, "\n".join(warnings))
        errors = self.device.runtime_errors()
        self.check(not errors, f"the runtime complains: {errors}")
        self.show("no warning from lumd, and no wrong byte seen by the runtime")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--shell", action="store_true",
                        help="open a shell on the handset afterwards")
    parser.add_argument("--build", type=pathlib.Path, default=payload.DEFAULT_BUILD,
                        help="build folder to show (default: build/release)")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    signal.signal(signal.SIGHUP, lambda *_: sys.exit(129))
    machine = Machine("demo")
    if machine.running():
        print("Another demo runs already; 'handset/handset.py stop --name demo' ends it.",
              file=sys.stderr)
        return 1
    try:
        held = Demo(machine, arguments.build).tell()
        if arguments.shell and machine.running():
            print(FAREWELL)
            machine.interact()
        return 0 if held else 1
    except KeyboardInterrupt:
        return 130
    finally:
        machine.stop()


if __name__ == "__main__":
    sys.exit(main())
