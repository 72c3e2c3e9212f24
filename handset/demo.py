#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Tells on the terminal what lumd does on a handset, and checks each step of it."""

import argparse
import signal
import sys
import time

import apps
import device
from demoapps import AppSteps
from demolaunchers import LauncherSteps
from demosteps import Steps, StepFailed
from image import HandsetError
from machine import Machine

FAREWELL = f"""
You are on the handset. Some things to try; the Tab key completes commands and names:
  lumctl list
  lumctl launch {apps.NOTES.launchers[0].caption}
  lumctl info {apps.NOTES.package}
  lumctl monitor
  busctl introspect {device.BUS_NAME} {device.OBJECT_PATH}
  alienctl status
  alienctl announce {apps.MAPS.package}
  ls -l {apps.APPLICATIONS} {apps.ICONS} {apps.SETTINGS}
  journalctl -f -u {device.LUMD} -u {device.RUNTIME}
Leave the shell to stop the handset.
"""


def paint(code, text):
    return f"\033[{code}m{text}\033[0m" if sys.stdout.isatty() else text


def tell(steps):
    """Runs the steps; gives whether all of them held."""
    for number, step in enumerate(steps, 1):
        print(paint("1", f"\n[{number}/{len(steps)}] {step.__doc__}"), flush=True)
        started = time.monotonic()
        try:
            step()
        except (StepFailed, HandsetError) as error:
            Steps.show(str(error))
            print(paint("1;31", "    FAILED"))
            return False
        print(paint("32", f"    ok ({time.monotonic() - started:.1f} s)"), flush=True)
    print(paint("1;32", f"\nAll {len(steps)} steps hold."))
    return True


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--shell", action="store_true",
                        help="open a shell on the handset afterwards")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    signal.signal(signal.SIGHUP, lambda *_: sys.exit(129))
    machine = Machine("demo")
    if machine.running():
        print("Another demo runs already; 'handset/handset.py stop --name demo' ends it.",
              file=sys.stderr)
        return 1
    try:
        handset = device.Device(machine)
        held = tell(LauncherSteps(handset).steps + AppSteps(handset).steps)
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
